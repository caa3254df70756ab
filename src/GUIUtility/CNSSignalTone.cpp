#include "CNSSignalTone.h"

#include <QApplication>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <numbers>

#include "Network/SignalSample.h"

#ifdef DIALTONE_HAVE_MULTIMEDIA
#include <QAudioFormat>
#include <QAudioSink>
#include <QIODevice>
#include <QMediaDevices>
#endif

namespace {

constexpr int kLowHz = 300;
constexpr int kHighHz = 1500;
constexpr int kSampleRate = 22050;

} // namespace

#ifdef DIALTONE_HAVE_MULTIMEDIA
// Endless 16-bit mono samples of the current pitch, read by the sink as it needs them.
class CNSSignalTone::Sine : public QIODevice {
public:
    explicit Sine(const QAudioDevice& device) {
        QAudioFormat format;
        format.setSampleRate(kSampleRate);
        format.setChannelCount(1);
        format.setSampleFormat(QAudioFormat::Int16);
        _sink = std::make_unique<QAudioSink>(device, format);
        open(QIODevice::ReadOnly);
    }
    ~Sine() override { _sink->stop(); }
    bool start() {
        _sink->start(this);
        return _sink->error() == QAudio::NoError;
    }
    void setPitch(int hz) { _hz = hz; }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return 4096 + QIODevice::bytesAvailable(); }

protected:
    qint64 readData(char* data, qint64 maxSize) override {
        const qint64 samples = maxSize / 2;
        auto* out = reinterpret_cast<qint16*>(data);
        const int hz = _hz;
        for (qint64 i = 0; i < samples; ++i) {
            // Silence while unknown; the phase goes on so that a new pitch starts without a click.
            out[i] = hz == 0 ? 0 : static_cast<qint16>(std::sin(_phase) * 8000);
            _phase = std::fmod(_phase + 2 * std::numbers::pi * hz / kSampleRate, 2 * std::numbers::pi);
        }
        return samples * 2;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    std::unique_ptr<QAudioSink> _sink;
    std::atomic<int> _hz{0};
    double _phase = 0;
};
#else
class CNSSignalTone::Sine {};
#endif

CNSSignalTone::CNSSignalTone(QObject* parent) : QObject(parent) {
    // The beeps: at each tick of a second, as many beeps as bars, spread over it.
    connect(&_beeps, &QTimer::timeout, this, [this] {
        const int bars = std::max(SignalSample::barsOf(_dbm), 0);
        if (_beepsLeft <= 0)
            _beepsLeft = bars;
        if (_beepsLeft > 0) {
            QApplication::beep();
            --_beepsLeft;
        }
        _beeps.setInterval(bars > 0 ? 1000 / bars : 1000);
    });
}

CNSSignalTone::~CNSSignalTone() = default;

int CNSSignalTone::pitchOf(int dbm) {
    if (dbm >= 0)
        return 0;
    return kLowHz + (std::clamp(dbm, -113, -51) + 113) * (kHighHz - kLowHz) / 62;
}

bool CNSSignalTone::startSine() {
#ifdef DIALTONE_HAVE_MULTIMEDIA
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull()) {
        _note = tr("No sound device: beeps instead of the tone.");
        return false;
    }
    _sine = std::make_unique<Sine>(device);
    _sine->setPitch(pitchOf(_dbm));
    if (_sine->start())
        return true;
    _sine.reset();
    _note = tr("The sound device could not be opened: beeps instead of the tone.");
    return false;
#else
    _note = tr("Built without sound: beeps instead of the tone.");
    return false;
#endif
}

void CNSSignalTone::setEnabled(bool on) {
    if (on == _enabled)
        return;
    _enabled = on;
    _note.clear();
    _beeps.stop();
    _sine.reset();
    if (on && !startSine())
        _beeps.start(1000);
}

void CNSSignalTone::setDbm(int dbm) {
    _dbm = dbm < 0 ? dbm : 0;
#ifdef DIALTONE_HAVE_MULTIMEDIA
    if (_sine)
        _sine->setPitch(pitchOf(_dbm));
#endif
}
