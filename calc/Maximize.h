#pragma once

#include <functional>

class ConfigDocument;
class DLFixture;
class Reporter;

// Adds fixtures from the current component until the analysis fails, then backs off until it
// passes again. reanalyze runs the analysis after each change and returns its pass flag.
// "Fixture Count is now: %1" lines go to the reporter's log. Returns the number of additions.
int maximize(ConfigDocument& doc, DLFixture* fixture, const std::function<bool()>& reanalyze, Reporter* reporter);
