#include "qel/solvers/joint_names.h"
#include <algorithm>
#include <map>
#include <set>

namespace sg {
namespace {

// What a word adds to the meaning of a name.
enum class Word {
    Left,
    Right,
    Upper,
    Lower,
    Base,
    Filler,
    Helper,
    Root,
    Hips,
    Hip,
    Pelvis,
    Spine,
    Neck,
    Head,
    Collar,
    Shoulder,
    Arm,
    Elbow,
    Hand,
    Finger,
    Thumb,
    Index,
    Middle,
    Ring,
    Little,
    Thigh,
    Leg,
    Shin,
    Foot,
    Toe,
};

struct WordRow {
    wchar_t const* text;
    Word word;
};

constexpr WordRow dictionary[] = {
    {L"left", Word::Left},      {L"lft", Word::Left},          {L"l", Word::Left},
    {L"right", Word::Right},    {L"rgt", Word::Right},         {L"r", Word::Right},
    {L"up", Word::Upper},       {L"upper", Word::Upper},       {L"low", Word::Lower},
    {L"lower", Word::Lower},    {L"lo", Word::Lower},          {L"fore", Word::Lower},
    {L"base", Word::Base},      {L"joint", Word::Filler},      {L"jnt", Word::Filler},
    {L"jt", Word::Filler},      {L"bone", Word::Filler},       {L"bn", Word::Filler},
    {L"end", Word::Helper},     {L"nub", Word::Helper},        {L"site", Word::Helper},
    {L"tip", Word::Helper},     {L"effector", Word::Helper},   {L"eff", Word::Helper},
    {L"twist", Word::Helper},   {L"roll", Word::Helper},       {L"helper", Word::Helper},
    {L"ik", Word::Helper},      {L"pole", Word::Helper},       {L"control", Word::Helper},
    {L"ctrl", Word::Helper},    {L"target", Word::Helper},     {L"metacarpal", Word::Helper},
    {L"root", Word::Root},      {L"reference", Word::Root},    {L"world", Word::Root},
    {L"master", Word::Root},    {L"armature", Word::Root},     {L"hips", Word::Hips},
    {L"hip", Word::Hip},        {L"pelvis", Word::Pelvis},     {L"spine", Word::Spine},
    {L"chest", Word::Spine},    {L"torso", Word::Spine},       {L"back", Word::Spine},
    {L"abdomen", Word::Spine},  {L"waist", Word::Spine},       {L"thorax", Word::Spine},
    {L"ribcage", Word::Spine},  {L"trunk", Word::Spine},       {L"belly", Word::Spine},
    {L"neck", Word::Neck},      {L"head", Word::Head},         {L"skull", Word::Head},
    {L"collar", Word::Collar},  {L"clavicle", Word::Collar},   {L"clav", Word::Collar},
    {L"scapula", Word::Collar}, {L"shoulder", Word::Shoulder}, {L"shldr", Word::Shoulder},
    {L"arm", Word::Arm},        {L"humerus", Word::Arm},       {L"elbow", Word::Elbow},
    {L"ulna", Word::Elbow},     {L"hand", Word::Hand},         {L"wrist", Word::Hand},
    {L"palm", Word::Hand},      {L"finger", Word::Finger},     {L"fingers", Word::Finger},
    {L"thumb", Word::Thumb},    {L"index", Word::Index},       {L"pointer", Word::Index},
    {L"middle", Word::Middle},  {L"mid", Word::Middle},        {L"ring", Word::Ring},
    {L"pinky", Word::Little},   {L"pinkie", Word::Little},     {L"little", Word::Little},
    {L"thigh", Word::Thigh},    {L"femur", Word::Thigh},       {L"leg", Word::Leg},
    {L"shin", Word::Shin},      {L"calf", Word::Shin},         {L"knee", Word::Shin},
    {L"tibia", Word::Shin},     {L"foot", Word::Foot},         {L"ankle", Word::Foot},
    {L"toe", Word::Toe},        {L"toes", Word::Toe},          {L"ball", Word::Toe},
};

WordRow const* lookUp(std::wstring_view text) {
    for (WordRow const& row : dictionary)
        if (text == row.text) return &row;
    return nullptr;
}

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool isUpper(wchar_t c) { return c >= L'A' && c <= L'Z'; }
bool isLower(wchar_t c) { return c >= L'a' && c <= L'z'; }
bool isLetter(wchar_t c) { return isUpper(c) || isLower(c) || c >= 128; }

// Runs of digits and of letters; a capital begins a new run after a small letter and before one ("LHip" is L, Hip).
std::vector<std::wstring> split(std::wstring_view name) {
    std::vector<std::wstring> tokens;
    bool open = false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        wchar_t const c = name[i], before = i ? name[i - 1] : L' ', after = i + 1 < name.size() ? name[i + 1] : L' ';
        if (!isLetter(c) && !isDigit(c)) {
            open = false;
            continue;
        }
        bool const turns = isDigit(c) != isDigit(before) || (isUpper(c) && (isLower(before) || isLower(after)));
        if (!open || turns) tokens.emplace_back();
        tokens.back().push_back(isUpper(c) ? wchar_t(c - L'A' + L'a') : c);
        open = true;
    }
    return tokens;
}

// "lupleg" is l, up, leg: known words without a rest, long ones first; or the token as it is.
bool takeApart(std::wstring_view token, std::vector<std::wstring>& out) {
    if (token.empty()) return true;
    for (std::size_t size = token.size(); size > 0; --size) {
        if (!lookUp(token.substr(0, size))) continue;
        out.emplace_back(token.substr(0, size));
        if (takeApart(token.substr(size), out)) return true;
        out.pop_back();
    }
    return false;
}

constexpr std::size_t longestTakenApart = 32;  // no name of a joint is longer; what is, is no name of a joint

std::vector<std::wstring> tokensOf(std::wstring const& name) {
    std::size_t const colon = name.find_last_of(L":|/");
    std::vector<std::wstring> out;
    for (std::wstring const& token : split(std::wstring_view(name).substr(colon + 1))) {
        std::vector<std::wstring> words;
        bool const apart = token.size() <= longestTakenApart && takeApart(token, words);
        if (apart)
            out.insert(out.end(), words.begin(), words.end());
        else
            out.push_back(token);
    }
    return out;
}

// What most names begin with tells nothing, unless it is a word for a part or a side.
void dropCommonStart(std::vector<std::vector<std::wstring>>& names) {
    for (int round = 0; round < 3; ++round) {
        std::map<std::wstring, std::size_t> count;
        for (auto const& tokens : names)
            if (!tokens.empty() && !lookUp(tokens[0])) ++count[tokens[0]];
        for (auto const& [token, often] : count) {
            if (names.size() < 3 || 10 * often < 7 * names.size()) continue;
            for (auto& tokens : names)
                if (!tokens.empty() && tokens[0] == token) tokens.erase(tokens.begin());
        }
    }
}

using Words = std::set<Word>;

BodyPart digit(Words const& words, std::vector<int> const& numbers) {
    constexpr std::pair<Word, BodyPart> digits[] = {{Word::Thumb, BodyPart::Thumb},
                                                    {Word::Index, BodyPart::Index},
                                                    {Word::Ring, BodyPart::Ring},
                                                    {Word::Little, BodyPart::Little},
                                                    {Word::Middle, BodyPart::Middle}};
    for (auto [word, part] : digits)
        if (words.count(word)) return part;
    bool const isCounted = words.count(Word::Finger) && numbers.size() == 2 && numbers[0] >= 1 && numbers[0] <= 5;
    return isCounted ? BodyPart(int(BodyPart::Thumb) + numbers[0] - 1) : BodyPart::None;
}

void setPart(JointName& name, BodyPart part) {
    name.part = part;
    name.word = NameWord::Certain;
}

void readArm(JointName& name, Words const& words) {
    if (words.count(Word::Elbow) || (words.count(Word::Arm) && words.count(Word::Lower)))
        setPart(name, BodyPart::Forearm);
    else if (words.count(Word::Arm) && words.count(Word::Upper))
        setPart(name, BodyPart::UpperArm);
    else
        name.word = words.count(Word::Arm) ? NameWord::Arm : NameWord::Shoulder;
}

void readLeg(JointName& name, Words const& words) {
    bool const leg = words.count(Word::Leg) != 0;
    if (words.count(Word::Shin) || (leg && words.count(Word::Lower)))
        setPart(name, BodyPart::Shin);
    else if (words.count(Word::Thigh) || (leg && words.count(Word::Upper)))
        setPart(name, BodyPart::Thigh);
    else
        name.word = leg ? NameWord::Leg : NameWord::Hip;
}

// Words of parts further out stand first: "LeftHandThumb1" is a thumb, "LeftToeBase" no base.
void readPart(JointName& name, Words const& words) {
    auto const has = [&](Word w) { return words.count(w) != 0; };
    bool const sided = name.side != BodySide::Middle;
    name.isHelper = has(Word::Helper);
    if (name.isHelper) return;
    BodyPart const finger = sided ? digit(words, name.numbers) : BodyPart::None;
    if (finger != BodyPart::None) return setPart(name, finger);
    if (has(Word::Finger)) return;
    if (has(Word::Toe)) return setPart(name, BodyPart::Toe);
    if (has(Word::Foot)) return setPart(name, BodyPart::Foot);
    if (has(Word::Hand)) return setPart(name, BodyPart::Hand);
    if (has(Word::Collar)) return setPart(name, BodyPart::Collar);
    if (has(Word::Elbow) || has(Word::Arm) || has(Word::Shoulder)) return readArm(name, words);
    if (has(Word::Thigh) || has(Word::Shin) || has(Word::Leg) || (has(Word::Hip) && sided)) return readLeg(name, words);
    if ((has(Word::Hips) || has(Word::Hip) || has(Word::Pelvis)) && !sided) return setPart(name, BodyPart::Hips);
    if (sided) return;
    if (has(Word::Head)) return setPart(name, BodyPart::Head);
    if (has(Word::Neck)) return setPart(name, BodyPart::Neck);
    if (has(Word::Spine)) return setPart(name, BodyPart::Spine);
    if (has(Word::Root)) setPart(name, BodyPart::Root);
}

JointName readName(std::vector<std::wstring> const& tokens) {
    JointName name;
    Words words;
    for (std::wstring const& token : tokens) {
        if (isDigit(token[0])) {
            int number = 0;
            for (wchar_t c : token) number = std::min(10 * number + (c - L'0'), 100'000);
            name.numbers.push_back(number);
            name.key += std::to_wstring(number) + L' ';
            continue;
        }
        WordRow const* row = lookUp(token);
        if (row && row->word == Word::Filler) continue;
        if (row) words.insert(row->word);
        bool const isSide = row && (row->word == Word::Left || row->word == Word::Right);
        if (!isSide) name.key += token + L' ';
    }
    if (words.count(Word::Left) != words.count(Word::Right))
        name.side = words.count(Word::Left) ? BodySide::Left : BodySide::Right;
    name.key += name.side == BodySide::Left ? L"<" : name.side == BodySide::Right ? L">" : L"";
    readPart(name, words);
    return name;
}

}  // namespace

std::vector<JointName> readJointNames(std::vector<std::wstring> const& names) {
    std::vector<std::vector<std::wstring>> tokens;
    for (std::wstring const& name : names) tokens.push_back(tokensOf(name));
    dropCommonStart(tokens);
    std::vector<JointName> out;
    for (auto const& t : tokens) out.push_back(readName(t));
    return out;
}

}  // namespace sg
