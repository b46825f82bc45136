// Writes a whole database as XML. Each node is an element with its id, type, name and parent, in the order of the
// hierarchy; inside stand the attributes whose value differs from the default of their row. What is computed or
// connected is not written: the connections are. The same document always gives the same bytes.
//
//     <tavo format="1" name="scene">
//       <node id="16" type="Joint" name="hips" parent="0">
//         <a n="TranslationX">1.5</a>  <a n="Colour.Red">0.3</a>  <e n="Layers" id="320"><a n="Label">base</a></e>
//         <d n="custom" type="4">2</d>
//       </node>
//       <connection id="96" from="64.OutputValue" to="16.TranslationX"/>
//     </tavo>
//
// References are a node's id, or id and local path joined with ".".
#pragma once
#include "qel/db/streams.h"
#include <string>

namespace db {

class Attribute;

class Saver {
public:
    virtual ~Saver() = default;
    virtual bool save(Attribute& root) = 0;
};

class SaverXML : public Saver {
public:
    static constexpr int formatVersion = 1;

    explicit SaverXML(OutputStream& stream, int = 0) : stream_(stream) {}
    // `root`: a database. True when all of it is safe, the stream committed; otherwise error() says what went wrong and
    // the target is as it was.
    bool save(Attribute& root) override;
    std::wstring const& error() const { return error_; }

private:
    OutputStream& stream_;
    std::wstring error_;
};

}  // namespace db
