// What a file held that this program does not know: kept with the document and written again.
#pragma once
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace db {

// An element of a file, as it stood.
struct PreservedElement {
    std::string name, text;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<PreservedElement> children;
};

struct PreservedNode {
    std::string type, nameSpace;  // of a node whose type is not known; empty otherwise
    std::vector<PreservedElement> elements;
};

struct PreservedConnection {
    int id;
    std::string from, to;
};

struct Preserved {
    std::map<int, PreservedNode> nodes;  // by id
    std::vector<PreservedConnection> connections;
};

}  // namespace db
