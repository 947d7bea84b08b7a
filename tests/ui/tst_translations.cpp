// The German translation: complete, faithful to every placeholder, current with the sources, and
// loaded from the system locale (CTest runs this with LANG=de_DE.UTF-8).

#include "app/Runplan.h"
#include "app/Translations.h"

#include <QAction>
#include <QDomDocument>
#include <QMenuBar>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace
{
const QString TsFile = QStringLiteral(RUNPLAN_SOURCE_DIR "/translations/runplan_de.ts");

struct Entry {
    QString context, source, translation, type; // type "missing" when there is no translation at all
};

QList<Entry> readTs(const QString& path)
{
    QList<Entry> entries;
    QFile file(path);
    QDomDocument doc;
    if (!file.open(QIODevice::ReadOnly) || !doc.setContent(&file))
        return entries;
    const QDomNodeList messages = doc.elementsByTagName(QStringLiteral("message"));
    for (int i = 0; i < messages.size(); ++i) {
        const QDomElement m = messages.at(i).toElement();
        const QDomElement t = m.firstChildElement(QStringLiteral("translation"));
        entries.append({m.parentNode().firstChildElement(QStringLiteral("name")).text(),
                        m.firstChildElement(QStringLiteral("source")).text(), t.text(),
                        t.isNull() ? QStringLiteral("missing") : t.attribute(QStringLiteral("type"))});
    }
    return entries;
}

// What a translation keeps of its source: the placeholders (in any order), whether it has an
// accelerator (which may move), and the spaces it starts and ends with ("watts  ", " already
// exists...": texts joined with others).
QStringList kept(const QString& text)
{
    static const QRegularExpression marker(QStringLiteral("%\\d+|\\[\\*\\]"));
    QStringList found;
    for (auto it = marker.globalMatch(text); it.hasNext();)
        found.append(it.next().captured());
    found.sort();
    const QString inner = text.trimmed();
    const qsizetype start = text.indexOf(inner);
    return found << QString::number(text.contains('&')) << text.left(start) << text.mid(start + inner.size());
}
} // namespace

class TestTranslations : public QObject
{
    Q_OBJECT
private slots:
    void everyTextTranslated();
    void germanLoadsFromTheLocale();
};

void TestTranslations::everyTextTranslated()
{
    const QList<Entry> entries = readTs(TsFile);
    QVERIFY2(entries.size() > 100, qPrintable(TsFile + QStringLiteral(" holds too few texts")));
    for (const Entry& e : entries) {
        const QString where = e.context + QStringLiteral(": \"") + e.source + QLatin1Char('"');
        QVERIFY2(e.type.isEmpty() && !e.translation.isEmpty(),
                 qPrintable(where + QStringLiteral(" is not translated (") + e.type + QLatin1Char(')')));
        QVERIFY2(kept(e.translation) == kept(e.source),
                 qPrintable(where +
                            QStringLiteral(" changes its placeholders, accelerator or edge spaces: ") +
                            e.translation));
    }

    // Every text in the sources is in the file: lupdate over a copy adds nothing unfinished.
    QTemporaryDir dir;
    const QString copy = dir.filePath(QStringLiteral("runplan_de.ts"));
    QVERIFY(QFile::copy(TsFile, copy));
    QProcess lupdate;
    lupdate.setWorkingDirectory(QStringLiteral(RUNPLAN_SOURCE_DIR));
    const QString folders = QStringLiteral("app catalog calc model canvas update");
    lupdate.start(QStringLiteral(RUNPLAN_LUPDATE), QStringList{"-no-obsolete", "-locations", "none"}
                                                       << folders.split(' ') << QStringLiteral("-ts")
                                                       << copy);
    QVERIFY(lupdate.waitForFinished(120000));
    QCOMPARE(lupdate.exitCode(), 0);
    // A tr() that lupdate cannot place in a context is never extracted, so never translated.
    const QString said =
        QString::fromLocal8Bit(lupdate.readAllStandardError() + lupdate.readAllStandardOutput());
    QVERIFY2(!said.contains(QLatin1String("cannot be called without context")), qPrintable(said));
    QStringList untranslated;
    for (const Entry& e : readTs(copy))
        if (!e.type.isEmpty())
            untranslated.append(e.context + QStringLiteral(": ") + e.source);
    QVERIFY2(untranslated.isEmpty(),
             qPrintable(QStringLiteral("texts missing from translations/runplan_de.ts (build the target "
                                       "update_translations and translate them):\n") +
                        untranslated.join(QLatin1Char('\n'))));
}

void TestTranslations::germanLoadsFromTheLocale()
{
    // English is the source: nothing is installed and the texts stay as written.
    QVERIFY(!installTranslations(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    QCOMPARE(QCoreApplication::translate("RunplanClass", "Calculate"), QStringLiteral("Calculate"));

    QCOMPARE(QLocale().name(), QStringLiteral("de_DE"));
    QVERIFY(installTranslations(*qApp));
    Runplan window;
    QCOMPARE(window.findChild<QPushButton*>(QStringLiteral("m_DL_Calculate_Configuration"))->text(),
             QStringLiteral("Berechnen"));
    QCOMPARE(window.menuBar()->actions().first()->text(), QStringLiteral("Datei"));
    // Texts set by the window's code and by the property table's model, not only by the form.
    QCOMPARE(
        window.findChild<QAction*>(QStringLiteral("actionOpen"))->statusTip(),
        QStringLiteral("Eine vorhandene Konfiguration öffnen, nicht gespeicherte Änderungen werden geprüft"));
    QCOMPARE(
        window.findChild<QTableView*>(QStringLiteral("tableView"))->model()->headerData(5, Qt::Horizontal),
        QVariant(QStringLiteral("Ausgabemodus")));
}

QTEST_MAIN(TestTranslations)
#include "tst_translations.moc"
