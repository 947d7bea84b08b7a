#include "catalog/FieldReader.h"

#include "catalog/Records.h"
#include "catalog/Reporter.h"

#include <QCoreApplication>
#include <cmath>

namespace FieldReader
{

bool toInt(const QString& text, int& out)
{
    bool ok = false;
    const int v = text.toInt(&ok, 10);
    if (ok)
        out = v;
    return ok;
}

bool toDouble(const QString& text, double& out)
{
    bool ok = false;
    const double v = text.toDouble(&ok);
    if (!ok || !std::isfinite(v))
        return false;
    out = v;
    return true;
}

QString childText(const QDomElement& element, const QString& child)
{
    return element.firstChildElement(child).text();
}

namespace
{
template <typename Convert>
bool readField(const VxItem& record, const QDomElement& element, const QString& child, bool required,
               Reporter* reporter, Convert convert)
{
    const QDomElement e = element.firstChildElement(child);
    if (!e.isNull() && convert(e.text()))
        return true;
    if (required && reporter)
        reporter->warning(QCoreApplication::translate("Database", "Error parsing \"%1\" field for %2")
                              .arg(child, record.name));
    return false;
}
} // namespace

bool readInt(const VxItem& record, const QDomElement& element, const QString& child, int& dest, bool required,
             Reporter* reporter)
{
    return readField(record, element, child, required, reporter,
                     [&](const QString& t) { return toInt(t, dest); });
}

bool readDouble(const VxItem& record, const QDomElement& element, const QString& child, double& dest,
                bool required, Reporter* reporter)
{
    return readField(record, element, child, required, reporter,
                     [&](const QString& t) { return toDouble(t, dest); });
}

bool readFloat(const VxItem& record, const QDomElement& element, const QString& child, float& dest,
               bool required, Reporter* reporter)
{
    return readField(record, element, child, required, reporter, [&](const QString& t) {
        double d = 0.0;
        if (!toDouble(t, d) || std::fabs(d) > 3.0e38)
            return false;
        dest = static_cast<float>(d);
        return true;
    });
}

bool readBool(const VxItem& record, const QDomElement& element, const QString& child, bool& dest,
              bool required, Reporter* reporter)
{
    return readField(record, element, child, required, reporter, [&](const QString& t) {
        int v = 0;
        if (!toInt(t, v))
            return false;
        dest = v != 0;
        return true;
    });
}

} // namespace FieldReader
