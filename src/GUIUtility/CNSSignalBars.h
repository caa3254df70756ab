#pragma once

#include <QWidget>

// Signal strength as five rising bars; level 0-5, anything else (no modem, unknown) shows empty bars.
class CNSSignalBars : public QWidget {
    Q_OBJECT
public:
    explicit CNSSignalBars(QWidget* parent = nullptr);

    void setLevel(int level);
    int level() const { return _level; }

    QSize sizeHint() const override { return {30, 16}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    int _level = -1;
};
