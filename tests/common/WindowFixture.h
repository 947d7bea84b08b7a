#pragma once

// The main window driven as a user would, every question answered from a script, and the file
// helpers the window and batch suites share.

#include "CatalogFixture.h"
#include "app/Prompter.h"
#include "app/Runplan.h"
#include "model/CWidgetModel.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QVariant>


// Answers from one queue in the order asked; every question is recorded. With no answer left a
// question is unexpected, unless answerYes is set: then it gets yes, Discard, or no file.
class ScriptedPrompter : public Prompter
{
public:
    QVariantList answers; // SaveChoice answers as int
    bool answerYes = false;
    QStringList asked;    // the kind of every question, in order
    QStringList lastArgs; // the texts shown with the last one
    QStringList unexpected;

    QString getOpenFileName(QWidget*, const QString& caption, const QString& dir, const QString& filter) override
    {
        return take("open", {caption, dir, filter}, QString()).toString();
    }
    QString getSaveFileName(QWidget*, const QString& caption, const QString& proposed,
                            const QString& filter) override
    {
        return take("save", {caption, proposed, filter}, QString()).toString();
    }
    bool askClearConfiguration(QWidget*) override { return take("clear").toBool(); }
    SaveChoice askSaveChanges(QWidget*, const QString& name) override
    {
        const SaveChoice fallback = answerYes ? SaveChoice::Discard : SaveChoice::Cancel;
        return SaveChoice(take("saveChanges", {name}, int(fallback)).toInt());
    }
    bool askReplace(QWidget*, const QString& path) override { return take("replace", {path}).toBool(); }
    bool askReplaceNotReadWhole(QWidget*, const QString& name) override
    {
        return take("notReadWhole", {name}).toBool();
    }
    bool confirmDelete(QWidget*) override { return take("delete").toBool(); }
    int execDialog(QDialog*) override
    {
        return take("dialog", {}, false).toBool() ? QDialog::Accepted : QDialog::Rejected;
    }
    bool askRecover(QWidget*, const QString& name) override { return take("recover", {name}).toBool(); }

private:
    QVariant take(const char* what, const QStringList& args = {}, const QVariant& fallback = QVariant())
    {
        asked << QString::fromLatin1(what);
        lastArgs = args;
        if (!answers.isEmpty())
            return answers.takeFirst();
        if (!answerYes)
            unexpected << QString::fromLatin1(what);
        return fallback.isValid() ? fallback : QVariant(answerYes);
    }
};

// One window per test function, on a cleared settings store of the program's own name, with a
// scripted prompter and a temporary folder.
class WindowFixture
{
protected:
    void openWindow(bool answerYes = false)
    {
        QCoreApplication::setOrganizationName(QStringLiteral("Vorlux"));
        QCoreApplication::setApplicationName(QStringLiteral("Runplan"));
        QSettings().clear();
        m_dir = std::make_unique<QTemporaryDir>();
        m_window = new Runplan;
        m_prompter = new ScriptedPrompter;
        m_prompter->answerYes = answerYes;
        m_window->setPrompter(m_prompter);
    }
    void closeWindow()
    {
        doc()->setModified(false); // nothing left to save: closing must not ask
        delete m_window;
        delete m_prompter;
        m_dir.reset();
    }
    // The window's widgets and actions, found by their object names.
    template <typename T> T* find(const QString& name) const
    {
        T* w = m_window->findChild<T*>(name);
        if (!w)
            qFatal("no widget or action named %s", qPrintable(name));
        return w;
    }
    ConfigDocument* doc() const { return m_window->document(); }
    void trigger(const char* action) { find<QAction>(action)->trigger(); }

    // Runs comma-separated steps as a user would: an add button or "maximize" by its short name,
    // "mode=", "type=" or "location=" edits the current component, "NAME_Combo=entry" chooses,
    // "root" and "parent" select, and "reset", "receiver", "delete" (the key), "new".
    void run(const QString& steps)
    {
        static const QHash<QString, QString> buttons{
            {"fixture", "m_DL_AddFixture_Button"}, {"jumper", "m_DL_AddJumper_Button"},
            {"leader", "m_DL_AddLeader_Button"},   {"box", "m_DL_AddJunctionBox_Button"},
            {"enabler", "m_DL_AddSupply_Button"},  {"maximize", "m_DL_Maximize_Button"}};
        static const QHash<QString, int> properties{
            {"mode", PropOutputMode}, {"type", PropType}, {"location", PropLocation}};
        for (QString step : steps.split(',')) {
            if ((step = step.trimmed()).isEmpty())
                continue;
            const QString name = step.section('=', 0, 0);
            const QString value = step.section('=', 1);
            if (buttons.contains(name))
                QTest::mouseClick(find<QPushButton>(buttons.value(name)), Qt::LeftButton);
            else if (properties.contains(name))
                doc()->model()->setData(doc()->model()->indexOf(doc()->current(), properties.value(name)), value);
            else if (name.endsWith("Combo") || name.endsWith("ComboBox")) {
                QComboBox* c = find<QComboBox>(name);
                QVERIFY2(c->findText(value) >= 0, qPrintable(step));
                c->setCurrentIndex(c->findText(value));
            } else if (name == "reset") // no button of its own
                m_window->on_m_DL_Reset_Button_clicked();
            else if (name == "receiver") // its button is hidden
                m_window->on_m_DL_AddReceiver_Button_clicked();
            else if (name == "root")
                doc()->setCurrent(doc()->root());
            else if (name == "parent")
                doc()->setCurrent(doc()->current()->parentWidget());
            else if (name == "delete")
                QTest::keyClick(m_window, Qt::Key_Delete);
            else if (name == "new")
                trigger("actionNew");
            else
                QFAIL(qPrintable("unknown step " + step));
        }
    }

    Runplan* m_window = nullptr;
    ScriptedPrompter* m_prompter = nullptr;
    std::unique_ptr<QTemporaryDir> m_dir;
};
