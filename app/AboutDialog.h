#pragma once

#include <QDialog>

class QLabel;

// The about box: the splash picture with the version and holder lines; any click closes it.
class AboutDialog : public QDialog
{
    Q_OBJECT
public:
    explicit AboutDialog(QWidget* parent = nullptr);

    QLabel* versionLabel() const { return m_version; }
    QLabel* holderLabel() const { return m_holder; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLabel* m_version;
    QLabel* m_holder;
};
