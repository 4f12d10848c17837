// Names of the library's classes, for headers that need a pointer or a reference only.
#pragma once

#include <unicode/unistr.h>

#include <cstdint>

#include <RynCommon/Export.h>

namespace RynCommon {

/// All text crosses the interface as ICU's UTF-16 string.
using icu::UnicodeString;

class JZFileIOobj;
class JZIOobj;
class JZStreamIOobj;
class MathMLName;
class OleCompFile;
class OleDirInfo;
class OlePropertySet;
class OleStream;
class OleSummaryInformation;
class RyAttr;
class RyCStr;
class RyColor;
class RyCompactText;
class RyDataUri;
class RyDocument;
class RyDocumentFragment;
class RyElement;
class RyError;
class RyGzipOStream;
class RyGzipStream;
class RyInflaterStream;
class RyLang;
class RyLength;
class RyLock;
class RyMemStream;
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
class RyOleStream;
class RyOrientation;
class RyPINode;
class RyRCObject;
class RySide;
class RyTempFile;
class RyTextNode;
class RyTokenizer;
class RyTreeIterator;
class RyUUID;
class RyUri;
class RyUriReferenceResolver;
class RyUriStream;
class RyValue;
class RyWritingMode;
class RyXmlParser;
class RyXmlSerializer;
class RyZipEntry;
class RyZipFile;
class RyZipFileEntry;
class SVGName;
class TransMatrix;
template <class T>
class RyPtr;

enum RyNameEnum : std::int32_t;
enum RyValueType : std::uint8_t;
enum RyValueUnitType : std::uint8_t;

}  // namespace RynCommon
