#include "update/LoadingDialog.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

LoadingDialog::LoadingDialog(QWidget* parent)
    : QDialog(parent), m_label(new QLabel(tr("Working, please wait..."), this)),
      m_progressBar(new QProgressBar(this)), m_cancelButton(new QPushButton(tr("Cancel"), this))
{
    setObjectName(QStringLiteral("LoadingDialog"));
    setWindowTitle(tr("Runplan"));
    setWindowIcon(QIcon(QStringLiteral(":/Runplan.ico")));
    setModal(true);

    m_label->setObjectName(QStringLiteral("loadingLabel"));
    m_label->setAlignment(Qt::AlignCenter);
    m_progressBar->setObjectName(QStringLiteral("loadingProgressBar"));
    m_progressBar->setRange(0, 100);
    m_progressBar->setValue(0);
    m_progressBar->setFormat(QStringLiteral("%p%"));
    m_progressBar->setTextVisible(true);
    m_cancelButton->setObjectName(QStringLiteral("cancelButton"));
    m_cancelButton->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancelButton);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addWidget(m_progressBar);
    layout->addLayout(buttons);
    setMinimumWidth(300);

    connect(m_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
}

void LoadingDialog::setText(const QString& text)
{
    m_label->setText(text);
}

QString LoadingDialog::text() const
{
    return m_label->text();
}

void LoadingDialog::setPercent(int percent)
{
    m_progressBar->setValue(qBound(0, percent, 100));
}

int LoadingDialog::percent() const
{
    return m_progressBar->value();
}

void LoadingDialog::showCentredOn(QWidget* window)
{
    adjustSize();
    QRect area;
    if (window)
        area = window->window()->frameGeometry();
    else if (QScreen* screen = QGuiApplication::primaryScreen())
        area = screen->availableGeometry();
    if (area.isValid()) {
        // The frame is not known before the first show; centring the client area centres the frame too.
        QRect client(QPoint(), size());
        client.moveCenter(area.center());
        setGeometry(client);
    }
    show();
}
