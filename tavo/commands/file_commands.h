// Foreign files in and out. The user is asked for the file, unless the parameter names it; the settings find the
// translator by its extension, which reads the parameters of these commands from the settings' nodes of their names.
#pragma once
#include "qel/sg/enumerations.h"
#include "tavo/commands/command_pattern.h"

namespace Tavo {

// The units of a file: those of the scene's settings, and what the translator knows or finds in the file.
namespace file_units {
inline constexpr int AutomaticLength = 6, AutomaticAngle = 2;
inline constexpr wchar_t const* lengths[] = {L"Millimetres", L"Centimetres", L"Metres",   L"Inches",
                                             L"Feet",        L"Yards",       L"Automatic"};
inline constexpr wchar_t const* angles[] = {L"Degrees", L"Radians", L"Automatic"};
}  // namespace file_units

class XImportFile : public XCommandType<XImportFile> {
    static constexpr wchar_t const* modes[] = {L"Add", L"Replace"};

public:
    enum Mode { AddObjects = 0, ReplaceObjects = 1 };

    static constexpr XWord TypeID = L"ImportFile";
    static constexpr wchar_t const* Help = L"Asks for a file and brings it into the scene.";
    static constexpr bool ReachesFiles = true;
    using XTyped::XTyped;

    TAVO_PARAMETER(8, ImportMode, L"Whether the file's objects join those of the same names, or take their place.",
                   enumeration, modes)
    TAVO_PARAMETER(9, LinearUnits, L"Of the file's lengths.", enumeration, file_units::lengths,
                   file_units::AutomaticLength)
    TAVO_PARAMETER(10, AngularUnits, L"Of the file's angles.", enumeration, file_units::angles,
                   file_units::AutomaticAngle)
    TAVO_PARAMETER(11, Characterize, L"Makes each imported skeleton a character.", boolean)
    TAVO_PARAMETER(12, ResetTimeline, L"The scene's time range becomes the file's.", boolean, true)
    TAVO_PARAMETER(13, File, L"Of the next run alone, which then does not ask.", text)

    void onRun() override;
    void ImportFileWithDialogue();
};
using XImportFileDef = XTypedDef<XImportFile>;

class XExportFile : public XCommandType<XExportFile> {
public:
    static constexpr XWord TypeID = L"ExportFile";
    static constexpr wchar_t const* Help = L"Asks for a file and writes the scene, or what is selected, to it.";
    static constexpr bool ReachesFiles = true;
    using XTyped::XTyped;

    TAVO_PARAMETER(8, LinearUnits, L"Of the file's lengths.", enumeration, file_units::lengths,
                   file_units::AutomaticLength)
    TAVO_PARAMETER(9, AngularUnits, L"Of the file's angles.", enumeration, file_units::angles,
                   file_units::AutomaticAngle)
    TAVO_PARAMETER(10, ExportSelected, L"Writes only what is selected and all below it.", boolean)
    TAVO_PARAMETER(11, File, L"Of the next run alone, which then does not ask.", text)

    void onRun() override;
    void ExportFileWithDialogue();
};
using XExportFileDef = XTypedDef<XExportFile>;

}  // namespace Tavo
