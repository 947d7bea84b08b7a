#include "app/Autosave.h"

#include "app/commands/EditHistory.h"
#include "model/ConfigDocument.h"

#include <QTimer>

Autosave::Autosave(ConfigDocument* doc, EditHistory* history, std::function<QByteArray()> project,
                   std::function<QString()> origin, QObject* parent)
    : QObject(parent), m_doc(doc), m_project(std::move(project)), m_origin(std::move(origin)),
      m_timer(new QTimer(this))
{
    m_timer->setInterval(IntervalMs);
    connect(m_timer, &QTimer::timeout, this, &Autosave::writeNow);
    m_timer->start();
    connect(history, &EditHistory::stepRecorded, this, [this]() {
        if (++m_steps % StepsPerWrite == 0)
            writeNow();
    });
}

void Autosave::setEnabled(bool on)
{
    m_enabled = on;
    if (on)
        m_timer->start();
    else
        m_timer->stop();
}

void Autosave::writeNow()
{
    if (!m_enabled)
        return;
    if (m_doc->isModified())
        m_store.write(m_project(), m_origin());
    else
        m_store.discard(); // undone back to the saved state: nothing is left to recover
}

void Autosave::discard()
{
    m_steps = 0;
    m_store.discard();
}
