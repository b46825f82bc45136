// A connection: the value of one attribute flows into another. It is a node, so that the history, change sets and files
// treat it like one: its life is the connection. It stands outside the hierarchy and is no object of the scene.
#pragma once
#include "qel/sg/node.h"

namespace sg {

class Connection final : public Node {
public:
    static inline std::wstring const ClassID = L"Connection";
    static db::NodeDef const Def;
    explicit Connection(db::NodeDef const& def = Def) : Node(def) {}

    db::Attribute* getSource() const { return from; }
    db::Attribute* getTarget() const { return to; }
    bool isNotAnObject() const override { return true; }
    bool supportsChildren() const override { return false; }
    void onLife(bool removed) override;

    db::Attribute *from = nullptr, *to = nullptr;
    std::int64_t edge = -1, input = -1;  // the places it had, to come back to; -1: the end
};

}  // namespace sg
