// Reads what SaverXML wrote, and checks as it reads: the document is built aside and takes the place of the database's
// content only when all of it is sound. A broken, truncated or hostile file gives false and one message with line and
// column, and leaves the database as it was.
//
// Loading restores ids, names, the hierarchy, values, dynamic attributes and connections, forgets the history and
// cannot be undone. Nodes of a type that is not known here, and attributes that a type does not have, are kept as they
// stand and written again. An id that is no longer free is replaced.
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
    static constexpr int mostLevels = 10000;  // of the hierarchy

    explicit LoaderXML(InputStream& stream, int = 0, ReferenceResolver* = nullptr) : stream_(stream) {}
    bool load(Attribute& root) override;  // `root`: a database
    std::wstring const& error() const { return error_; }

private:
    InputStream& stream_;
    std::wstring error_;
};

}  // namespace db
