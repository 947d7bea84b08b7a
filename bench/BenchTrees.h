#pragma once

#include "calc/Session.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QList>

// A tree of short runs for the benchmarks: junction boxes three outputs wide and as deep as
// needed, each box also feeding three runs of fixture, jumper, fixture, until the plan holds n
// components.
inline void buildShortRuns(Session& s, int n)
{
    s.reset();
    ConfigDocument& doc = s.document();
    DLFixture* fixture = s.selectedFixture();
    int total = 1;
    QList<CWidget*> boxes{doc.addJunctionBox()};
    total += 2;
    for (int next = 0; next < boxes.size() && total < n; ++next) {
        CWidget* box = boxes.at(next);
        for (int run = 0; run < 3 && total < n; ++run) {
            doc.setCurrent(box);
            doc.addFixture(fixture);
            ++total;
            if (total < n) {
                doc.addJumper(fixture);
                ++total;
            }
            if (total < n) {
                doc.addFixture(fixture);
                ++total;
            }
        }
        for (int sub = 0; sub < 3 && total + 2 <= n; ++sub) {
            doc.setCurrent(box);
            boxes.append(doc.addJunctionBox());
            total += 2;
        }
    }
}
