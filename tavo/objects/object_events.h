// What happened to the objects of a scene, for the script engines: which came, went, and changed name or parent.
//
// Operations note it while they run, in the order in which it happens, and only while an engine wants it. It is told
// behind the notice of the commit that it belongs to and never from within the operation: that may be in the midst of
// building something, a rig, and must not have the scene changed under it; and who is told sees a finished commit. A
// transient commit tells as well, so that engines hear of objects during playback. What a cancelled block noted is
// dropped, but for what a transient commit inside it has told already.
//
// An operation that does nothing notes nothing. Making and copying an object are its creation alone, without the name
// and the parent that it is given on the way; of a copied hierarchy each object is noted, parents first. So it is with
// deletion: each object that goes is noted, parents first, inputs that nobody needs any more behind what they fed. An
// object that leaves its children behind is removed, and those are reparented. A new place among the same siblings is
// no new parent; a name that had to change for a new parent's sake is noted behind it. An object that came and went in
// one commit is told of twice, and is invalid both times.
//
// Nothing is noted in settings, by undo and redo, and where no history is kept: while a document is made or loaded.
#pragma once
#include "tavo/objects/object.h"
#include <optional>
#include <vector>

namespace Tavo {

class XSceneGraph;

class XObjectEvents {
public:
    enum Kind { Created, Deleted, Removed, Renamed, Reparented };

    // Handlers that answer every event with another would never end: what they do this deep is dropped, together with
    // all that is not told yet.
    static constexpr int MostNestedTellings = 32;

    explicit XObjectEvents(XSceneGraph& graph) : _graph(graph) {}
    XObjectEvents(XObjectEvents const&) = delete;
    XObjectEvents& operator=(XObjectEvents const&) = delete;

    // Whether what happens to the object now is noted; else noting it does nothing.
    static bool AreNoted(XObject const& object);
    static void Note(Kind kind, XObject const& object);
    static void NoteCopies(XObject const& top);  // that it and all below it were created

    void Cancel();  // before the open block is rolled back
    void Tell();    // what was committed and not told, each event to each engine in order

    // While it stands, names and parents that change are not noted: they are part of something that is noted as a
    // whole. Who is told of a commit meanwhile is no part of it, and what they do is noted.
    class [[nodiscard]] Pause {
    public:
        explicit Pause(XDatabase const& database);
        ~Pause();
        Pause(Pause const&) = delete;
        Pause& operator=(Pause const&) = delete;

    private:
        XSceneGraph* _graph;
    };

    // Notes at its end whether the object's parent and name are others than at its beginning, however they became so.
    class [[nodiscard]] Comparison {
    public:
        explicit Comparison(XObject const& object);
        ~Comparison();
        Comparison(Comparison const&) = delete;
        Comparison& operator=(Comparison const&) = delete;

    private:
        XObject const& _object;
        sg::Node const* _parent = nullptr;
        std::wstring _name;
        std::optional<Pause> _pause;  // none: nothing is to be noted
    };

    // What is about to go, parents first; at its end those are noted that went: the first as `kind`, the others, which
    // went with it, as deleted.
    class Departures {
    public:
        explicit Departures(Kind kind) : _kind(kind) {}
        ~Departures();
        Departures(Departures const&) = delete;
        Departures& operator=(Departures const&) = delete;
        void Expect(XObject const& object);
        void ExpectHierarchy(XObject const& top);

    private:
        Kind _kind;
        std::vector<XObject> _objects;
    };

    // Brackets the telling of a commit, at whose beginning all that was noted is committed.
    class [[nodiscard]] Telling {
    public:
        explicit Telling(XObjectEvents& events);
        ~Telling();
        Telling(Telling const&) = delete;
        Telling& operator=(Telling const&) = delete;

    private:
        XObjectEvents& _events;
        int _pauses;
    };

private:
    struct Event {
        Kind kind;
        XObject object;
        bool isInBlock;  // noted inside a change block
    };

    bool isNoting() const;
    void note(Kind kind, XObject const& object);
    void commit();
    void drop();

    XSceneGraph& _graph;
    std::vector<Event> _noted;  // since the last commit
    std::vector<Event> _due;    // committed
    int _pauses = 0, _nesting = 0;
    bool _isDropping = false;  // until the outermost telling ends
};

}  // namespace Tavo
