#include "catalog/XmlDepth.h"

#include <QXmlStreamReader>

bool XmlDepth::exceeds(const QByteArray& bytes, int maxDepth, qint64* line, qint64* column)
{
    QXmlStreamReader reader(bytes);
    int depth = 0;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            if (++depth > maxDepth) {
                if (line)
                    *line = reader.lineNumber();
                if (column)
                    *column = reader.columnNumber();
                return true;
            }
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
        }
    }
    return false;
}
