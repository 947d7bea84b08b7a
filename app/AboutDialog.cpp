#include "app/AboutDialog.h"

#include "app/SplashScreen.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QVBoxLayout>

AboutDialog::AboutDialog(QWidget* parent)
    : QDialog(parent), m_version(new QLabel(SplashScreen::versionLine(), this)),
      m_holder(new QLabel(SplashScreen::holderLine(), this))
{
    setWindowFlags(Qt::FramelessWindowHint | Qt::SplashScreen);
    setStyleSheet(QStringLiteral("QDialog { background-image: url(:/splash.png); }"));

    QPalette captionPalette = palette();
    captionPalette.setColor(QPalette::Base, Qt::white);
    captionPalette.setColor(QPalette::WindowText, Qt::white);
    for (QLabel* label : {m_version, m_holder}) {
        label->setPalette(captionPalette);
        label->setFont(SplashScreen::captionFont());
        label->setAlignment(Qt::AlignHCenter);
    }

    auto* column = new QVBoxLayout;
    column->addStretch();
    column->addWidget(m_version);
    column->addWidget(m_holder);
    auto* outer = new QHBoxLayout(this);
    outer->addLayout(column);
    outer->setContentsMargins(33, 4, 8, 20);

    // The box is exactly the picture.
    const QSize pictureSize = QPixmap(QStringLiteral(":/splash.png")).size();
    setMinimumSize(pictureSize);
    setMaximumSize(pictureSize);

    setModal(true);
    installEventFilter(this);
}

bool AboutDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == this && event->type() == QEvent::MouseButtonPress) {
        close();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
