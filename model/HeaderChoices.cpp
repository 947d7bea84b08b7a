#include "model/HeaderChoices.h"

int voltageEntryAfterFixtureChange(const QList<int>& voltages, int startingVoltage, const QString& previous,
                                   const QString& customText)
{
    if (previous == customText)
        return voltages.size();
    bool ok = false;
    const int previousVolts = previous.toInt(&ok);
    int index = ok ? voltages.indexOf(previousVolts) : -1;
    if (index < 0)
        index = voltages.indexOf(startingVoltage);
    if (index < 0 && !voltages.isEmpty())
        index = 0;
    return index;
}
