#pragma once

#include <QString>

class Runplan;

// The life of the main window's configuration as a file: New, Open, Save, Save As, the question
// about unsaved changes, the file name in the title and the menus, and the recovery of what a run
// that did not exit cleanly left behind. Each operation keeps the undo history and the autosave
// in step: opening or saving starts a fresh saved state, New is one undoable step.
class DocumentLifecycle
{
public:
    explicit DocumentLifecycle(Runplan* window) : m_window(window) {}

    QString currentFile() const { return m_currentFile; }
    // Where and why the project last opened broke off; empty when it was read whole.
    QString notReadWholeReason() const { return m_notReadWholeReason; }
    // The file name shown in questions ("Untitled.rpproj" when untitled).
    QString displayName() const;
    void setCurrentFile(const QString& path);
    void setWindowTitleFor(const QString& path);

    // Asks to save unsaved changes; true when the user cancelled.
    bool offerToSaveIfNeeded();
    void newConfiguration();
    void chooseAndOpen();
    bool open(const QString& path);
    // Asks first when the path is that of a project read only in part; false when not saved.
    bool save(const QString& path);
    void saveCurrent();
    void saveAs();
    // True when unsaved changes of a crashed run were recovered.
    bool offerRecovery();

private:
    Runplan* m_window;
    QString m_currentFile;
    // The project opened last when it broke off before its end (absolute path), and why.
    QString m_notReadWholePath;
    QString m_notReadWholeReason;
};
