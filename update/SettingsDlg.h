#pragma once

#include <QDialog>

namespace Ui
{
class SettingsDlg;
}
class UpdateChecker;

// The preferences: HTTP proxy and update settings. OK stores every value as it stands, Cancel none.
class SettingsDlg : public QDialog
{
    Q_OBJECT
public:
    explicit SettingsDlg(QWidget* parent = nullptr);
    ~SettingsDlg() override;

    // Null until "Check Now" was first pressed.
    UpdateChecker* updateChecker() const { return m_updateChecker; }

public slots:
    void handleFinished(int result);

private slots:
    void on_checkForUpdatesNowButton_clicked();

private:
    void loadSettings();
    void storeSettings();

    Ui::SettingsDlg* ui;
    UpdateChecker* m_updateChecker = nullptr;
};
