# Dialtone developer commands. Everything goes through CMake; see README.md.
BUILD      ?= build
ASAN_BUILD ?= build-asan
COVERAGE_BUILD ?= build-coverage
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
JOBS       ?= $(shell nproc)
CMAKE_GEN  := -G Ninja

.PHONY: all bootstrap configure build check layers asan coverage bench fuzz fuzz-smoke fuzz-long demo install format clean translations

all: build

bootstrap:
	@scripts/bootstrap

configure: bootstrap
	@cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

check: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)
	@scripts/test-share

# Refreshes translations/*.ts from the tr() texts in src/ (new ones come in unfinished; make check fails
# until they are translated).
translations:
	@scripts/update-translations

# The layer rule alone (make check runs it too, as the CTest test layer_rule): front-end files include
# neither the AT sublayer nor the worker thread's headers.
layers:
	@scripts/check-layers

asan: bootstrap
	@cmake -S . -B $(ASAN_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DDIALTONE_SANITIZE=ON >/dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
		LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp ctest --output-on-failure -j $(JOBS)

# Line and branch coverage of src/ and tools/ by the whole suite, per folder, from a gcov build of its own;
# the HTML report lands in $(COVERAGE_BUILD)/coverage/index.html.
coverage: bootstrap
	@cmake -S . -B $(COVERAGE_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DDIALTONE_COVERAGE=ON -DDIALTONE_BUILD_BENCH=OFF >/dev/null
	@cmake --build $(COVERAGE_BUILD) -j $(JOBS)
	@find $(COVERAGE_BUILD) -name '*.gcda' -delete
	@cd $(COVERAGE_BUILD) && ctest -j $(JOBS) >ctest.log 2>&1 || { tail -30 ctest.log; echo "make coverage: some tests failed (see $(COVERAGE_BUILD)/ctest.log); the figures count what ran" >&2; }
	@scripts/coverage-report $(COVERAGE_BUILD)

bench: build
	@$(BUILD)/bench/dialtone_bench

# Builds the libFuzzer targets in fuzz/ (one per reader of modem, network and file input). Needs clang
# (Debian's clang package), which make check does not.
FUZZ_TARGETS := pdu_decode channel at_families stk_codec property_list account_data operator_tables recording vcard
fuzz: bootstrap
	@command -v clang++ >/dev/null || { echo "make fuzz: needs clang++ (apt-get install clang)" >&2; exit 1; }
	@cmake -S . -B $(FUZZ_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
		-DCMAKE_CXX_COMPILER=clang++ -DDIALTONE_FUZZ=ON -DDIALTONE_BUILD_TESTS=OFF -DDIALTONE_BUILD_BENCH=OFF >/dev/null
	@cmake --build $(FUZZ_BUILD) -j $(JOBS) --target fuzzers

# Runs each target for FUZZ_SECONDS on a scratch copy of its seeds ($(FUZZ_BUILD)/corpus/<name>, kept between
# runs) and prints its executions; a finding lands in $(FUZZ_BUILD)/findings/<name>/ and fails the run.
fuzz-smoke: fuzz
	@scripts/fuzz-run $(FUZZ_BUILD) seconds $(FUZZ_SECONDS) $(FUZZ_TARGETS)

# Runs each target to FUZZ_RUNS executions (ten million), one after the other; README.md gives the time.
FUZZ_RUNS ?= 10000000
fuzz-long: fuzz
	@scripts/fuzz-run $(FUZZ_BUILD) runs $(FUZZ_RUNS) $(FUZZ_TARGETS)

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
	@rm -rf $(BUILD) $(ASAN_BUILD) $(COVERAGE_BUILD)
