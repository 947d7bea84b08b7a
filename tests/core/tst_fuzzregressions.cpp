// Replays every stored hostile input (the test corpora and whatever the fuzzers ever found) through
// the parsers, with properties that must hold for any input.
#include "CatalogFixture.h"

#include "model/HeaderChoices.h"
#include "model/ProjectFile.h"

#include <QDir>

class TestFuzzRegressions : public QObject
{
    Q_OBJECT

    static QStringList filesIn(const QStringList& folders)
    {
        QStringList out;
        for (const QString& folder : folders)
            for (const QFileInfo& fi : QDir(testDataPath(folder)).entryInfoList(QDir::Files))
                out.append(folder + QLatin1Char('/') + fi.fileName());
        return out;
    }

private slots:
    // A refused catalog says so exactly once and keeps nothing; an accepted one is valid.
    void catalogs()
    {
        const QStringList files = filesIn({"catalog", "fuzz-regressions/catalog"});
        QVERIFY(!files.isEmpty());
        for (const QString& path : files) {
            RecordingReporter rep;
            Database db;
            const bool ok = db.loadBytes(testDataBytes(path), path, &rep);
            QCOMPARE(db.isValid(), ok);
            if (!ok) {
                QVERIFY2(rep.messages.size() == 1, qPrintable(path));
                QVERIFY2(db.fixtures().isEmpty() && db.supplies().isEmpty(), qPrintable(path));
            }
        }
    }

    // Whatever a file held, what was read saves to bytes that read back to the same bytes.
    void projects()
    {
        RecordingReporter quiet;
        Database db;
        QVERIFY(db.loadFile(sampleCatalogPath(), &quiet));
        const QStringList files = filesIn({"project", "app", "fuzz-regressions/project"});
        QVERIFY(!files.isEmpty());
        for (const QString& path : files) {
            RecordingReporter rep;
            ConfigDocument doc(&db);
            HeaderValues header;
            ProjectFile::read(testDataBytes(path), doc, header, &rep);
            const QByteArray saved = ProjectFile::toBytes(doc, header);
            ConfigDocument again(&db);
            HeaderValues header2;
            QVERIFY2(ProjectFile::read(saved, again, header2, &rep), qPrintable(path));
            QVERIFY2(ProjectFile::toBytes(again, header2) == saved, qPrintable(path));
        }
    }
};

QTEST_GUILESS_MAIN(TestFuzzRegressions)
#include "tst_fuzzregressions.moc"
