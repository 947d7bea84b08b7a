#include "app/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

bool installTranslations(QCoreApplication& app, const QLocale& locale)
{
    auto* own = new QTranslator(&app);
    if (!own->load(locale, QStringLiteral("runplan"), QStringLiteral("_"), QStringLiteral(":/i18n"))) {
        delete own;
        return false;
    }
    QCoreApplication::installTranslator(own);
    // Message box buttons, file dialogs and the like come from Qt's catalogue when it is installed.
    auto* qt = new QTranslator(&app);
    if (qt->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                 QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qt);
    else
        delete qt;
    return true;
}
