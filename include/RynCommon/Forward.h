// Names of the library's classes, for headers that need a pointer or a reference only.
#pragma once

#include <unicode/unistr.h>

#include <cstdint>

#include <RynCommon/Export.h>

namespace RynCommon {

/// All text crosses the interface as ICU's UTF-16 string.
using icu::UnicodeString;

class MathMLName;
class RyAttr;
class RyColor;
class RyCompactText;
class RyDataUri;
class RyDocument;
class RyDocumentFragment;
class RyElement;
class RyError;
class RyLang;
class RyLength;
class RyLock;
class RyMessage;
class RyMutex;
class RyName;
class RyNameList;
class RyNameTable;
class RyNamedNodeMap;
class RyNamedValue;
class RyNamedValueMap;
class RyNamedValueMapIterator;
class RyNode;
class RyNodeIterable;
class RyNodeIterator;
class RyNodeList;
class RyObjectBase;
class RyOrientation;
class RyPINode;
class RyRCObject;
class RySide;
class RyTextNode;
class RyTokenizer;
class RyTreeIterator;
class RyUri;
class RyUriReferenceResolver;
class RyUUID;
class RyValue;
class RyWritingMode;
class RyXmlParser;
class RyXmlSerializer;
class SVGName;
class TransMatrix;
template <class T>
class RyPtr;

enum RyNameEnum : std::int32_t;
enum RyValueType : std::uint8_t;
enum RyValueUnitType : std::uint8_t;

}  // namespace RynCommon
