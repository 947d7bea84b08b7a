#pragma once

#include <QByteArray>

// How deep the elements of an XML document nest, found with a streaming reader before any DOM is
// built: building and freeing a DOM recurses once per level, so a document nested far deeper
// than its kind ever is must be refused before it is parsed.
namespace XmlDepth
{
// True when an element lies more than maxDepth levels deep; *line and *column (when given) then
// tell where it starts. Other faults of the document are left to the parser that follows.
bool exceeds(const QByteArray& bytes, int maxDepth, qint64* line = nullptr, qint64* column = nullptr);
} // namespace XmlDepth
