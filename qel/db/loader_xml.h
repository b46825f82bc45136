// Reads what SaverXML wrote, and checks as it reads: the document is built aside and takes the place of the database's
// content only when all of it is sound. A broken, truncated or hostile file gives false and one message with line and
// column, and leaves the database as it was.
//
// Loading restores ids, names, the hierarchy, values, dynamic attributes and connections, forgets the history and
// cannot be undone. Nodes of a type that is not known here, attributes that a type does not have, and connections to
// those are kept as they stand and written again. An id that is no longer free, because a type has grown, is replaced,
// wherever the file refers to it.
#pragma once
#include "qel/db/streams.h"
#include <string>

namespace db {

class Attribute;

// Finds what a reference leads to where it is not in the file itself. Nothing here needs one.
class ReferenceResolver {
public:
    virtual ~ReferenceResolver() = default;
};

class Loader {
public:
    virtual ~Loader() = default;
    virtual bool load(Attribute& root) = 0;
};

class LoaderXML : public Loader {
public:
    static constexpr int mostLevels = 10000;  // of the hierarchy; the saver writes no more either
    static constexpr int mostElements = 200;  // open at once: what is not known is kept with all that it holds

    explicit LoaderXML(InputStream& stream, int = 0, ReferenceResolver* = nullptr) : stream_(stream) {}
    bool load(Attribute& root) override;  // `root`: a database
    std::wstring const& error() const { return error_; }

private:
    InputStream& stream_;
    std::wstring error_;
};

}  // namespace db
