#pragma once

#include "app/RecoveryStore.h"

#include <QObject>
#include <functional>

class ConfigDocument;
class EditHistory;
class QTimer;

// Writes the recovery file of a configuration with unsaved changes: every minute and on every
// twentieth recorded step. The owner deletes it when the changes are saved or let go.
class Autosave : public QObject
{
    Q_OBJECT
public:
    static constexpr int IntervalMs = 60 * 1000;
    static constexpr int StepsPerWrite = 20;

    // project: the bytes to keep; origin: the configuration's file path (empty when untitled).
    Autosave(ConfigDocument* doc, EditHistory* history, std::function<QByteArray()> project,
             std::function<QString()> origin, QObject* parent = nullptr);

    // An unattended run writes nothing.
    void setEnabled(bool on);
    RecoveryStore& store() { return m_store; }

    // Writes the recovery file now when there are unsaved changes, deletes it when there are none.
    void writeNow();
    // The changes were saved or let go: the recovery file goes.
    void discard();

private:
    ConfigDocument* m_doc;
    std::function<QByteArray()> m_project;
    std::function<QString()> m_origin;
    RecoveryStore m_store;
    QTimer* m_timer;
    int m_steps = 0;
    bool m_enabled = true;
};
