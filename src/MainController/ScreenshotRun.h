#pragma once

#include <QObject>
#include <QString>

class MainWindow;
class QWidget;

// Renders every tab of the main window to "<folder>/<module>.png" once the modem is ready (or the "no
// modem" page when it does not come up), then quits the application. For reviewing the look and for the
// README's pictures.
class ScreenshotRun : public QObject {
    Q_OBJECT
public:
    static constexpr int kReadyTimeoutMs = 30000;
    static constexpr int kSettleMs = 1500; // lets a module's first answers arrive before the picture

    ScreenshotRun(MainWindow& window, QString folder);
    void start();
    bool succeeded() const { return _succeeded; }

private:
    void shootAll();
    // The window, or the given dialog, to "<folder>/<name>.png".
    bool save(const QString& name, QWidget* widget = nullptr);
    // The Network tab's signal finder after a few readings.
    bool shootSignalFinder();

    MainWindow& _window;
    QString _folder;
    bool _succeeded = false;
    bool _started = false;
};
