#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

#include "ModemLink.h"
#include "NetworkRecords.h"
#include "Outcome.h"
#include "SignalSample.h"

// The radio network for the views: the current operator and registration, the search for the operators in
// reach, automatic or manual selection, and the band and mode the modem may use. Every method answers
// through its signal, with the outcome first; the views never see a request.
//
// The search takes a real modem up to three minutes; scanningChanged brackets it, and a second search
// while one runs is ignored. A stick without band and mode selection answers 46 (not supported): the
// controller then says radioUnsupported once and radioSupported() stays false until the modem goes.
class NetworkController : public QObject {
    Q_OBJECT
public:
    // Searching for operators and registering with one take the modem up to three minutes.
    static constexpr int kScanDeadlineSeconds = 200;

    // Where applying band and mode stopped.
    enum class RadioStep { Band, Mode };
    Q_ENUM(RadioStep)

    explicit NetworkController(ModemLink& link, QObject* parent = nullptr);

    void readInfo();
    // One signal reading (dBm, RSCP, Ec/Io, bearer, cell); ignored while one is under way.
    void readSignal();
    // Ignored while a reading is under way.
    void readRegistration();
    void scan();
    void selectAutomatic();
    // plmn: the operator's numeric code ("26202"); accessTechnology: "+COPS" <AcT>, or -1 for any.
    void selectOperator(const QString& plmn, int accessTechnology = -1);
    void readBand();
    void readMode();
    void setBand(NetworkBand band);
    void setMode(NetworkMode mode);
    // The band, then the mode once the band is taken; radioApplied says where it stopped.
    void applyRadio(NetworkBand band, NetworkMode mode);

    bool isScanning() const { return _scanning; }
    bool radioSupported() const { return _radioSupported; }

    // What a selection sends: automatic, or the operator by its numeric code.
    static BLNetworkSet automaticSelection();
    static BLNetworkSet operatorSelection(const QString& plmn, int accessTechnology = -1);
    // Modems may list an operator twice; the first entry of each code and technology is kept.
    static QList<BLNetworkListItem> distinctOperators(const QList<BLNetworkListItem>& items);

signals:
    void infoRead(const Outcome& outcome, const BLNetworkInfo& info);
    void registrationRead(const Outcome& outcome, const BLNetRegState& registration);
    void signalRead(const Outcome& outcome, const SignalSample& sample);
    void scanningChanged(bool scanning);
    void scanFinished(const Outcome& outcome, const QList<BLNetworkListItem>& operators);
    // plmn: the operator chosen, empty for automatic selection.
    void selectFinished(const Outcome& outcome, const QString& plmn);
    void bandRead(const Outcome& outcome, NetworkBand band);
    void modeRead(const Outcome& outcome, NetworkMode mode);
    void bandSet(const Outcome& outcome);
    void modeSet(const Outcome& outcome);
    // On success step is Mode.
    void radioApplied(const Outcome& outcome, NetworkController::RadioStep step);
    void radioUnsupported(const Outcome& outcome);

private:
    // Sends the request and hands its outcome and value on; a "not supported" answer also marks the
    // band and mode unsupported.
    void send(const QString& name, const QVariant& argument,
              std::function<void(const Outcome&, const QVariant&)> done);
    void select(const BLNetworkSet& selection);
    void noteUnsupported(const Outcome& outcome);

    ModemLink& _link;
    bool _scanning = false;
    bool _readingRegistration = false; // the poll and a selection may both ask
    bool _readingSignal = false;
    bool _radioSupported = true;
};
