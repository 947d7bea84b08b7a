#include "calc/Maximize.h"
#include <QCoreApplication>

#include "catalog/DLRecords.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

namespace
{

constexpr int MaxAdditions = 10000;

bool isFull(const CWidget* w)
{
    return w->childCount() >= w->maxChildren();
}

// Fixtures of these families are spread over the outputs of their receiver, one per output.
bool spreadsOverReceiver(const DLFixture* fixture)
{
    return fixture && (fixture->name.contains(QLatin1String("Pulse"), Qt::CaseInsensitive) ||
                       fixture->name.contains(QLatin1String("Flare"), Qt::CaseInsensitive));
}

class Maximizer
{
public:
    Maximizer(ConfigDocument& doc, DLFixture* fixture, const std::function<bool()>& reanalyze,
              Reporter* reporter)
        : m_doc(doc), m_fixture(fixture), m_reanalyze(reanalyze), m_reporter(reporter)
    {
    }

    int run();

private:
    bool addFixture();
    bool addFeedwiseItem();
    void backOff();
    void dropTrailingJumper();
    void changed() { m_pass = m_reanalyze(); }

    ConfigDocument& m_doc;
    DLFixture* m_fixture;
    const std::function<bool()>& m_reanalyze;
    Reporter* m_reporter;
    bool m_pass = true;
    int m_additions = 0;
    int m_fixtures = 0;
};

bool Maximizer::addFixture()
{
    if (!m_doc.addFixture(m_fixture))
        return false;
    ++m_additions;
    ++m_fixtures;
    if (m_reporter)
        m_reporter->log(QCoreApplication::translate("Maximize", "Fixture Count is now: %1").arg(m_fixtures));
    changed();
    return true;
}

bool Maximizer::addFeedwiseItem()
{
    if (!m_doc.addReceiver())
        return false;
    ++m_additions;
    changed();
    return true;
}

void Maximizer::backOff()
{
    // Entered only after a failed analysis; removes until the configuration passes again.
    while (!m_pass) {
        m_fixtures = m_doc.count(ItemFixture);
        if (m_fixtures < 2)
            return;
        const CWidget* current = m_doc.current();
        if (!current)
            return;
        if (current->itemType() == ItemJunctionBox && current->childCount() > 0)
            m_doc.setCurrent(current->children().last());
        if (!m_doc.removeCurrent())
            return;
        changed();
        if (!m_doc.root())
            return;
    }
    m_fixtures = m_doc.count(ItemFixture);
}

void Maximizer::dropTrailingJumper()
{
    const CWidget* current = m_doc.current();
    if (current && current->itemType() == ItemJumper && m_doc.removeCurrent()) {
        changed();
        m_fixtures = m_doc.count(ItemFixture);
    }
}

// Adds from the current component until the analysis fails or an addition is refused. A fixture
// of a receiver-spread family hanging on a receiver hands over to that receiver: a nested round
// that, like the outer one, backs off on its own and then lets the outer round go on. The nesting
// is kept as a depth count, since every round has the same state: the document's current component.
int Maximizer::run()
{
    const CWidget* start = m_doc.current();
    if (!start || isFull(start))
        return 0;
    m_pass = m_doc.passFlag();
    m_fixtures = m_doc.count(ItemFixture);

    int depth = 0;
    for (;;) {
        while (m_pass && m_additions < MaxAdditions) {
            const CWidget* current = m_doc.current();
            if (!current)
                break;
            const int kind = current->itemType();
            if ((kind == ItemSupply || kind == ItemBranchWire) &&
                current->locationText() == Modes::feedwise()) {
                if (!addFeedwiseItem())
                    break;
            } else if (kind != ItemFixture) {
                if (!addFixture())
                    break;
            } else {
                const CWidget* parent = current->parentWidget();
                if (spreadsOverReceiver(m_fixture) && parent && parent->itemType() == ItemReceiver) {
                    m_doc.setCurrent(parent);
                    if (!isFull(parent))
                        ++depth;
                    continue;
                }
                if (!addFixture())
                    break;
            }
        }
        backOff();
        dropTrailingJumper();
        if (depth == 0)
            break;
        --depth;
    }
    return m_additions;
}

} // namespace

int maximize(ConfigDocument& doc, DLFixture* fixture, const std::function<bool()>& reanalyze,
             Reporter* reporter)
{
    if (!fixture || !reanalyze)
        return 0;
    return Maximizer(doc, fixture, reanalyze, reporter).run();
}
