# Dialtone developer commands. Everything goes through CMake; see README.md.
BUILD      ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
JOBS       ?= $(shell nproc)
CMAKE_GEN  := -G Ninja

.PHONY: all bootstrap configure build check asan bench fuzz demo install format clean

all: build

bootstrap:
	@scripts/bootstrap

configure: bootstrap
	@cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

check: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

asan: bootstrap
	@cmake -S . -B $(ASAN_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DDIALTONE_SANITIZE=ON >/dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
		ctest --output-on-failure -j $(JOBS)

bench: build
	@$(BUILD)/bench/dialtone_bench

# Runs the PDU decoder's libFuzzer target for FUZZ_SECONDS. Needs clang (Debian's clang package), which
# make check does not; findings land in $(FUZZ_BUILD)/ as crash-* files.
fuzz: bootstrap
	@command -v clang++ >/dev/null || { echo "make fuzz: needs clang++ (apt-get install clang)" >&2; exit 1; }
	@cmake -S . -B $(FUZZ_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
		-DCMAKE_CXX_COMPILER=clang++ -DDIALTONE_FUZZ=ON -DDIALTONE_BUILD_TESTS=OFF -DDIALTONE_BUILD_BENCH=OFF >/dev/null
	@cmake --build $(FUZZ_BUILD) -j $(JOBS) --target pdu_decode_fuzz
	@mkdir -p $(FUZZ_BUILD)/corpus
	@cd $(FUZZ_BUILD) && ./fuzz/pdu_decode_fuzz -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1 \
		corpus $(CURDIR)/fuzz/corpus

# What Dialtone sees of a modem, shown against the simulated one: equipment, SIM and PIN state, operator,
# signal, bearer. Its own HOME keeps the demo's configuration out of the user's.
demo: build
	@home=$$(mktemp -d) && trap 'rm -rf "$$home"' EXIT && \
	echo '$$ dialtone --simulate status' && HOME="$$home" $(BUILD)/src/cli/dialtone --simulate status && echo && \
	echo '$$ dialtone --simulate network info' && HOME="$$home" $(BUILD)/src/cli/dialtone --simulate network info && echo && \
	echo '$$ dialtone --simulate=pin-locked pin status' && HOME="$$home" $(BUILD)/src/cli/dialtone --simulate=pin-locked pin status

# Installs the programs, resources and the modem's udev rule (PREFIX=/usr/local by default; needs root).
PREFIX ?= /usr/local
install: build
	@cmake --install $(BUILD) --prefix $(PREFIX)

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	@rm -rf $(BUILD) $(ASAN_BUILD)
