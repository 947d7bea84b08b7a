#include "catalog/Reporter.h"

#include <cstdio>

namespace
{
StderrReporter g_stderrReporter;
Reporter* g_reporter = nullptr;
} // namespace

void Reporter::status(const QString& text)
{
    Q_UNUSED(text)
}

void Reporter::log(const QString& text, bool failing)
{
    Q_UNUSED(text)
    Q_UNUSED(failing)
}

Reporter* Reporter::global()
{
    return g_reporter ? g_reporter : &g_stderrReporter;
}

void Reporter::setGlobal(Reporter* reporter)
{
    g_reporter = reporter;
}

void StderrReporter::message(Kind kind, const QString& title, const QString& text)
{
    Q_UNUSED(kind)
    const QByteArray line = (title + QStringLiteral(": ") + text).toLocal8Bit();
    std::fprintf(stderr, "%s\n", line.constData());
    std::fflush(stderr);
}
