#pragma once

#include <QLocale>

class QCoreApplication;

// Installs the program's translation for the locale's languages (compiled in under ":/i18n") and,
// with it, Qt's own texts for the standard buttons and dialogs. Where there is no translation of
// the program (English, the source language) nothing at all is installed, so the program reads as
// written. Returns whether the program's translation was installed.
bool installTranslations(QCoreApplication& app, const QLocale& locale = QLocale());
