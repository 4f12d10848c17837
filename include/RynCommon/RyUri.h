// URIs: construction, resolution, local paths, opening.
#pragma once

#include <istream>
#include <ostream>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// An application's hook that may supply the stream of any URI. At most one is installed in a
/// process.
class RYNCOMMON_API RyUriReferenceResolver {
public:
    virtual ~RyUriReferenceResolver();
    /// A new stream for `uri`, which the caller deletes, or null to leave the URI to the library.
    /// `contentType` may be null; a resolver that knows the media type stores it there.
    virtual std::istream* getStream(const UnicodeString& uri, UnicodeString* contentType) = 0;
};

/// The text of a URI, absolute or relative. A value.
///
/// Users write URIs, relative references, paths with drive letters or UNC names and CSS `url(...)`
/// tokens; construction turns all of them into one form and never fails: what is malformed does not
/// open. On this system `file:///p` without a drive letter is the path `/p`; drive and UNC paths
/// keep their backslash form and simply do not open.
class RYNCOMMON_API RyUri {
public:
    /// How a text handed to a constructor is to be read.
    enum URISTRTYPE : std::int32_t {
        URI_OR_PATH = 0,      ///< a URI or a path (recognised by a drive letter or a backslash)
        PATH = 1,             ///< a path; the same conversions apply
        CSS_URI_OR_PATH = 2,  ///< like 0, first unwrapped from `url(...)` and quotes
        CSS_PATH = 3          ///< like 1, first unwrapped from `url(...)` and quotes
    };

    RyUri();
    RyUri(const UnicodeString& text, URISTRTYPE type = URI_OR_PATH);
    /// Resolves `reference` against `base`.
    RyUri(const RyUri& base, const UnicodeString& reference, URISTRTYPE type = URI_OR_PATH);
    RyUri(const RyUri& other);
    RyUri& operator=(const RyUri& other);
    virtual ~RyUri();

    const UnicodeString& toString() const { return text_; }
    operator const UnicodeString&() const { return text_; }
    bool operator<(const RyUri& other) const { return text_ < other.text_; }
    bool operator==(const RyUri& other) const { return text_ == other.text_; }

    bool isEmpty() const { return text_.isEmpty(); }
    /// Whether the text begins with a scheme.
    bool isAbsolute() const;
    /// The scheme, lower-cased, without its colon; empty for a relative reference.
    UnicodeString getScheme() const;
    bool isDataScheme() const;
    bool isJarScheme() const;
    /// Whether the text begins with "file:" or is relative.
    bool isFile() const;
    /// Always false on systems without remote drives.
    bool isRemote() const;
    /// Whether the local path names an existing file.
    bool isFileExists() const;
    /// `path` in UTF-8.
    static bool isFileExists(const char* path);
    static bool isFileExists(const wchar_t* path);
    /// Whether both name one file: equal local paths, else the same device and inode.
    bool isSameFile(const RyUri& other) const;

    /// The path of a file URI, percent-decoded ("C:\a b\c.xml", "\\srv\share\a.xml", "/tmp/a"; each
    /// escaped byte becomes one unit). Any other absolute URI as it is; a relative one
    /// percent-decoded.
    UnicodeString getLocalPath() const;
    /// What follows the last slash or backslash of the path, without query and fragment; empty for
    /// a `data:` URI.
    UnicodeString getFileName() const;
    /// What follows the last "." of the file name, without the dot; empty when there is none.
    UnicodeString getExtension() const;
    /// Replaces, adds or (when empty) removes the extension, given with or without its dot; query
    /// and fragment stay. A URI without a file name stays as it is.
    void setExtension(const UnicodeString& extension);
    /// The URI up to and including its last "/", without query and fragment: what relative
    /// references resolve against. An authority without a path gets its "/". Empty when there is no
    /// slash, and for a `data:` URI.
    UnicodeString getBaseString() const;
    /// The reference that leads from this URI to `target` through the deepest directory they share;
    /// `target` itself where they share no root (authority, drive, archive) or where no reference
    /// resolves to it.
    UnicodeString getRelativeUri(const UnicodeString& target) const;
    /// Appends "/" unless the text ends with it.
    void toDirectory();
    /// Cuts the fragment off this URI and returns it with its "#".
    UnicodeString removeFragment();

    /// Each "%" and two hexadecimal digits become one UTF-16 unit of that value; bytes of a UTF-8
    /// sequence are not joined. Any other "%" stays.
    static UnicodeString unescape(const UnicodeString& text);
    /// Appends `separator` to `text` unless it ends with it.
    static void toDirectory(UnicodeString& text, wchar_t separator);
    /// The URI of `fileName` beside the loaded module that holds this library (a name without an
    /// extension gets the platform's module extension).
    static RyUri getModuleUri(const UnicodeString& fileName);

    /// Loads a shared library by path; null when it cannot be loaded.
    static void* loadLibrary(const UnicodeString& path);
    static void* getProcAddress(void* library, const char* name);
    static bool freeLibrary(void* library);

    /// Opens the resource for reading. The resolver is asked first; then, by scheme:
    /// - file URIs and relative ones: regular files and /dev/stdin;
    /// - `http:` and `https:`: the body as it arrives, see RyUriStreamBuf;
    /// - `data:`: what stands behind the comma, decoded;
    /// - `jar:`: what follows the last "!/" is a member, looked up as written and then
    ///   percent-decoded, of the zip archive that the text before it names; the resolver is asked
    ///   for that, too. A local archive is read in place, any other into memory, up to 1 GiB.
    ///   `jar:jar:A!/B!/C` is member C of archive B in archive A, and so on to a depth of 16.
    ///
    /// The caller deletes the stream, which owns all it needs. Null when nothing opens; nothing is
    /// thrown, except by the resolver.
    /// @param errorText    receives why null was returned; may be null
    /// @param contentType  receives the media type where one is known: the server's, without its
    ///                     parameters, or the one written in a `data:` URI; may be null
    std::istream* getStream(UnicodeString* errorText = nullptr,
                            UnicodeString* contentType = nullptr) const;
    /// The resolver's stream; null when none is installed or it has none.
    std::istream* getStreamFromResolver(UnicodeString* contentType = nullptr) const;

    /// Opens the resource as getStream() does and inflates it when it is gzip data (RFC 1952); null
    /// when it is not or does not open. The stream owns its source; the caller deletes it.
    std::istream* getGzipStream() const;
    /// A stream that inflates `source`, or null when that holds no gzip data. The caller deletes
    /// the stream; `source` stays the caller's and must outlive it.
    static std::istream* getGzipStream(std::istream& source);
    /// Whether the resource opens and is gzip data.
    bool isGzip() const;
    /// Whether a gzip header begins at the start of `source` or, when that cannot seek, where it
    /// stands. Its position and state stay as they are; one that cannot seek has to take three
    /// bytes back.
    static bool isGzip(std::istream& source);

    /// Opens the file that `uri` (resolved against this URI) names for writing, or null. Regular
    /// files, which are emptied, and /dev/stdout. Given back by releaseOStream().
    virtual std::ostream* createOStream(const UnicodeString& uri);
    /// Closes a file stream from createOStream() and deletes it. A null pointer is allowed.
    virtual void releaseOStream(std::ostream* out);

    /// Installs the application's resolver (null takes it away) and returns the previous one. It
    /// stays the application's and must live as long as it is installed; install it before
    /// documents are read.
    static RyUriReferenceResolver* setUriReferenceResolver(RyUriReferenceResolver* resolver);
    static RyUriReferenceResolver* getUriReferenceResolver();

protected:
    UnicodeString text_;
};

/// A URI with the parts of a `data:` URI (RFC 2397) taken out.
class RYNCOMMON_API RyDataUri : public RyUri {
public:
    RyDataUri(const UnicodeString& text, URISTRTYPE type = URI_OR_PATH);
    RyDataUri(const RyUri& base, const UnicodeString& reference, URISTRTYPE type = URI_OR_PATH);
    RyDataUri(const RyDataUri& other);
    RyDataUri& operator=(const RyDataUri& other);
    ~RyDataUri() override;

    const UnicodeString& getMediaType() const { return mediaType_; }
    bool isBase64() const { return base64_; }
    /// Index of the first unit after the comma; -1 when there is none.
    int getDataPos() const { return dataPos_; }
    /// Value of the "page" parameter; 0 when there is none or it is no positive integer.
    int getPageNumber() const { return pageNumber_; }

private:
    void analyse();

    UnicodeString mediaType_;
    bool base64_ = false;
    int dataPos_ = -1;
    int pageNumber_ = 0;
};

}  // namespace RynCommon
