// What a file held that this program does not know: kept with the document and written again.
#pragma once
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace db {

// An element of a file, as it stood.
struct PreservedElement {
    std::string name;
    std::wstring text;
    std::vector<std::pair<std::string, std::wstring>> attributes;
    std::vector<PreservedElement> children;
};

struct PreservedType {
    std::wstring type, nameSpace;
};

// A connection to or from an attribute that its node does not have here.
struct PreservedConnection {
    struct End {
        int node;
        std::wstring attribute;
    };
    int id;
    End from, to;
};

struct Preserved {
    std::unordered_map<int, PreservedType> types;                     // by node, of those whose type is not known
    std::unordered_map<int, std::vector<PreservedElement>> elements;  // by node or element of an attribute array
    std::vector<PreservedConnection> connections;
    int endOfIDs = 0;  // of the file: what is not known here may own ids as well
};

}  // namespace db
