#include "app/SplashScreen.h"

#include "catalog/Version.h"

#include <QDate>
#include <QFontMetrics>
#include <QPainter>

SplashScreen::SplashScreen() : QSplashScreen(QPixmap(QStringLiteral(":/splash.png")))
{
    // The caption is drawn by drawContents; this message only starts the content painting.
    showMessage(QStringLiteral("none"), Qt::AlignLeft, Qt::black);
    setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
}

QString SplashScreen::versionLine()
{
    return tr("Version: %1.%2.%3 %4-%5")
        .arg(RunplanVersion::Major)
        .arg(RunplanVersion::Minor)
        .arg(RunplanVersion::Revision)
        .arg(RunplanVersion::BuildDate)
        .arg(RunplanVersion::buildTag());
}

QString SplashScreen::holderLine()
{
    return tr("%1 %2 Vorlux Lighting").arg(QChar(0x00A9)).arg(QDate::currentDate().year());
}

QFont SplashScreen::captionFont()
{
    return QFont(QStringLiteral("Verdana"), 8, QFont::Normal);
}

void SplashScreen::killSplash()
{
    close();
}

void SplashScreen::drawContents(QPainter* painter)
{
    painter->save();
    const QFont font = captionFont();
    painter->setFont(font);
    painter->setPen(Qt::white);
    const int h = height();
    const int w = width();
    const int m = QFontMetrics(font).height();
    QRect line(0, h - 20, w, h - 20 + m);
    painter->drawText(line, Qt::AlignHCenter | Qt::AlignTop, holderLine());
    line.moveTop(h - 22 - m);
    painter->drawText(line, Qt::AlignHCenter | Qt::AlignTop, versionLine());
    painter->restore();
}
