#pragma once

#include <QSplashScreen>
#include <QString>

// The picture shown while the program starts, captioned with the version and the holder.
class SplashScreen : public QSplashScreen
{
    Q_OBJECT
public:
    SplashScreen();

    // "Version: 3.17.0 20250205-2cbee83"
    static QString versionLine();
    // The copyright line with this year.
    static QString holderLine();
    // The caption font of the splash and the about box.
    static QFont captionFont();

public slots:
    void killSplash();

protected:
    void drawContents(QPainter* painter) override;
};
