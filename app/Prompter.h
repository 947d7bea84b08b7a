#pragma once

#include <QString>

class QDialog;
class QWidget;

// Every question and file dialog the main window asks goes through one prompter, so that a test
// (or an unattended run) can answer without a modal window ever waiting for a click.
class Prompter
{
public:
    enum class SaveChoice { Save, Discard, Cancel };

    virtual ~Prompter() = default;

    // An empty string means the user cancelled.
    virtual QString getOpenFileName(QWidget* parent, const QString& caption, const QString& dir,
                                    const QString& filter) = 0;
    virtual QString getSaveFileName(QWidget* parent, const QString& caption, const QString& proposed,
                                    const QString& filter) = 0;
    // "This operation will clear the current configuration": true to go on.
    virtual bool askClearConfiguration(QWidget* parent) = 0;
    // The unsaved-changes question for the configuration shown under displayName.
    virtual SaveChoice askSaveChanges(QWidget* parent, const QString& displayName) = 0;
    // A file of that name exists: true to overwrite it.
    virtual bool askReplace(QWidget* parent, const QString& filePath) = 0;
    // Saving over a project that was read only in part: true to replace it.
    virtual bool askReplaceNotReadWhole(QWidget* parent, const QString& fileName) = 0;
    // Deleting a component that has others attached: true to delete them all.
    virtual bool confirmDelete(QWidget* parent) = 0;
    // Runs a modal dialog (preferences, print setup, the replace questions) and returns its result
    // code.
    virtual int execDialog(QDialog* dialog) = 0;
    // A run that did not exit cleanly left unsaved changes to displayName: true to recover them.
    virtual bool askRecover(QWidget* parent, const QString& displayName) = 0;
};

// The message boxes and file dialogs a person sees.
class DialogPrompter : public Prompter
{
public:
    QString getOpenFileName(QWidget* parent, const QString& caption, const QString& dir,
                            const QString& filter) override;
    QString getSaveFileName(QWidget* parent, const QString& caption, const QString& proposed,
                            const QString& filter) override;
    bool askClearConfiguration(QWidget* parent) override;
    SaveChoice askSaveChanges(QWidget* parent, const QString& displayName) override;
    bool askReplace(QWidget* parent, const QString& filePath) override;
    bool askReplaceNotReadWhole(QWidget* parent, const QString& fileName) override;
    bool confirmDelete(QWidget* parent) override;
    int execDialog(QDialog* dialog) override;
    bool askRecover(QWidget* parent, const QString& displayName) override;
};
