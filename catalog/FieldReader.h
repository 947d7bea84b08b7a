#pragma once

#include <QDomElement>
#include <QString>

class Reporter;
class VxItem;

// Readers for the fields of a catalog element. A child that is missing or does not convert leaves
// the destination unchanged and gives false; a required one is reported first.
namespace FieldReader
{
bool readInt(const VxItem& record, const QDomElement& element, const QString& child, int& dest, bool required,
             Reporter* reporter);
bool readDouble(const VxItem& record, const QDomElement& element, const QString& child, double& dest,
                bool required, Reporter* reporter);
bool readFloat(const VxItem& record, const QDomElement& element, const QString& child, float& dest,
               bool required, Reporter* reporter);
bool readBool(const VxItem& record, const QDomElement& element, const QString& child, bool& dest,
              bool required, Reporter* reporter);

// Plain conversions used where no record is involved. Non-finite numbers ("nan", "inf", "1e400")
// do not convert: they would poison every sum the analysis makes.
bool toInt(const QString& text, int& out);
bool toDouble(const QString& text, double& out);
QString childText(const QDomElement& element, const QString& child);
} // namespace FieldReader
