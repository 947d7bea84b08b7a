#pragma once

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

// The modal "please wait" window shown while a long operation runs on the GUI thread. The operation
// processes pending events between its steps, so the percentage repaints and Cancel is noticed.
class LoadingDialog : public QDialog
{
    Q_OBJECT
public:
    explicit LoadingDialog(QWidget* parent = nullptr);

    void setText(const QString& text);
    QString text() const;

    // Clamped to 0..100.
    void setPercent(int percent);
    int percent() const;

    // Rejects the dialog when clicked; callers connect its clicked() (or the dialog's rejected())
    // to stop their work.
    QPushButton* cancelButton() const { return m_cancelButton; }

    // Shows the dialog centred on the given window (the screen when null).
    void showCentredOn(QWidget* window);

private:
    QLabel* m_label;
    QProgressBar* m_progressBar;
    QPushButton* m_cancelButton;
};
