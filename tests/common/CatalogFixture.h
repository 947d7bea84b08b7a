#pragma once

// Set-up shared by the engine's suites: a catalog from tests/data loaded with a reporter that
// records its messages, a session (and with it a ConfigDocument) over that catalog, and golden
// files compared byte for byte.

#include "TestSupport.h"

#include "calc/Session.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QFile>
#include <QtTest>

#include <memory>

inline QByteArray testDataBytes(const QString& relative)
{
    QFile file(testDataPath(relative));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The lines of a file under tests/data, without blank lines and "#" comments.
inline QStringList dataLines(const QString& relative)
{
    QStringList lines = QString::fromUtf8(testDataBytes(relative)).split('\n', Qt::SkipEmptyParts);
    lines.removeIf([](const QString& line) { return line.startsWith('#'); });
    return lines;
}

// The fields of a "|"-separated data line, trimmed.
inline QStringList dataFields(const QString& line)
{
    QStringList fields = line.split(QLatin1Char('|'));
    for (QString& field : fields)
        field = field.trimmed();
    return fields;
}

// The golden file's bytes; with RUNPLAN_UPDATE_GOLDEN=1 in the environment the file is first
// rewritten with what the test produced (to review with git diff).
inline QByteArray goldenBytes(const QByteArray& produced, const QString& relative)
{
    if (qEnvironmentVariableIntValue("RUNPLAN_UPDATE_GOLDEN") == 1) {
        QFile file(testDataPath(relative));
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(produced);
    }
    return testDataBytes(relative);
}
#define COMPARE_GOLDEN(produced, relative)                                                             \
    do {                                                                                               \
        const QByteArray produced_ = (produced);                                                       \
        QCOMPARE(produced_, goldenBytes(produced_, relative));                                         \
    } while (false)

// A catalog file of tests/data loaded with a recording reporter.
struct LoadedCatalog {
    explicit LoadedCatalog(const QString& relative) : path(testDataPath(relative))
    {
        loaded = db.loadFile(path, &loadMessages);
    }
    // Loaded, valid and without a word.
    bool ready() const { return loaded && db.isValid() && loadMessages.messages.isEmpty(); }
    // The load's messages, one after another with a blank line between, the catalog's absolute
    // path shown by its file name: the form of the golden message files.
    QByteArray messageText() const
    {
        QString out;
        for (const QString& text : loadMessages.texts())
            out += QString(text).replace(path, QFileInfo(path).fileName()) + QStringLiteral("\n\n");
        return out.toUtf8();
    }

    QString path;
    Database db;
    RecordingReporter loadMessages;
    bool loaded = false;
};

// A session over a catalog of tests/data, as the main window holds one: the document starts with
// the first enabler placed, or, given a fixture name, with that fixture selected and the canvas reset.
struct CatalogSession : LoadedCatalog {
    explicit CatalogSession(const QString& relative, const QString& fixture = QString())
        : LoadedCatalog(relative), session(std::make_unique<Session>(db, &log))
    {
        if (!fixture.isEmpty()) {
            session->header().fixture = fixture;
            session->reset();
        }
    }
    ConfigDocument& doc() { return session->document(); }
    SupplyWidget* root() { return static_cast<SupplyWidget*>(doc().root()); }
    // A fresh canvas whose enabler feeds Feedwise, with a receiver below it (branch wire, then receiver).
    CWidget* feedwiseReceiver()
    {
        session->reset();
        root()->setOutputMode(Modes::feedwise());
        return doc().addReceiver();
    }

    RecordingReporter log; // what the session reported after loading
    std::unique_ptr<Session> session;
};
