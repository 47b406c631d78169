#pragma once

namespace launcher::mediatool {

// How much a finding matters: an error makes the launcher do something else than the maker meant; a
// warning may do so one day, or on some machines; a note is only information.
enum class Level { Note, Warning, Error };

// A kind of finding, and all that is said about it: UTF-8 sentences, in which %1, %2 ... stand for
// the values of the case at hand.
struct FindingText {
    // Its identifier, for ever: "count-file-bom". What follows a slash tells apart the rows of one
    // identifier, and is not shown.
    const char* name;
    Level level;
    const char* what;
    const char* why;
    const char* action;
};

namespace findings {

using enum Level;

inline constexpr char kNoStart[] = "Nobody can start the installation.";
inline constexpr char kCopyLauncher[] = "Copy the launcher to the medium again.";
inline constexpr char kCutOff[] =
    "Windows cannot start it: copying stopped before the end of the file.";
inline constexpr char kReadable[] =
    "Make it readable for everyone, and close the program that has it open.";
inline constexpr char kCopyFails[] =
    "The medium is copied to the temporary folder before the installer starts, and the copy fails.";
inline constexpr char kCopyWouldFail[] =
    "A copy to the temporary folder, made when volumes are missing, would fail.";
inline constexpr char kNotForWindows[] = "The launcher refuses the medium as not for Windows.";
inline constexpr char kStartFails[] =
    "The launcher takes it for the installer and fails to start it.";
inline constexpr char kPutInstaller[] = "Put the installer in its place.";
inline constexpr char kOnlyThisName[] = "The launcher looks for %2 only.";
inline constexpr char kMarkerUnseen[] = "The launcher does not see it.";
inline constexpr char kNoCount[] =
    "The launcher reads no number, looks for no volumes and copies the installer to the temporary "
    "folder.";
inline constexpr char kTakenAsSingle[] = "The launcher takes the disc set for a single medium.";
inline constexpr char kHandedOn[] = "The line goes to the installer as it stands.";
inline constexpr char kNumberAlone[] =
    "Write the number alone on the first line, with mediatool create --force.";
inline constexpr char kOnlyInInst[] =
    "The launcher looks for inst\\volumes.txt only, and takes the disc set for a single medium.";
inline constexpr char kNoId[] =
    "The launcher reads no identifier, as if the volume were not there.";
inline constexpr char kPartOfId[] = "It counts as a part of the identifier.";
inline constexpr char kWriteKey[] =
    "Write the line MTBDIR=identifier, in upper case and in the first column, in plain text.";
inline constexpr char kNotThere[] = "For the launcher, the volume is not there.";
inline constexpr char kIdDiffers[] = "The identifier is %1; volume 1 has %2.";
inline constexpr char kOfAnotherSet[] =
    "The launcher takes the volume for one of another disc set, and gives up on all of them.";
inline constexpr char kSameId[] =
    "Give all volumes of a disc set the same identifier, to the letter.";
inline constexpr char kInstallerAsks[] =
    "The launcher copies the installer to the temporary folder, and leaves it to the installer to "
    "ask for the other volumes.";
inline constexpr char kSecondMarker[] =
    "Volume %1 has a second marker, in another volume's folder.";
inline constexpr char kRemoveMarker[] = "Remove the marker that is in the wrong folder.";
inline constexpr char kOtherMarker[] = "The folder of volume %2 has the marker %3 in it.";
inline constexpr char kNoOuterMarker[] =
    "The launcher does not take it for the marker of an outer volume.";
inline constexpr char kNumberOuter[] = "Number the outer volumes from 1 to 99.";
inline constexpr char kRename[] = "Give it another name.";
inline constexpr char kTooLong[] =
    "In a copy, the path would have %1 characters; "
    "Windows takes %2 unless long paths are enabled%3.";
inline constexpr char kShorten[] = "Shorten the names of the file or of its folders.";
inline constexpr char kReplaceLink[] = "Put the file or folder itself in its place.";

inline constexpr char kWriteList[] =
    "Write the lists again, when the files are right: mediatool checksum --force.";
inline constexpr char kMoreOfThem[] = "The list of checksums has them all.";

inline constexpr FindingText kTexts[] = {
    // The set as mediatool left it.
    {"set-unfinished", Error, "The set was not written to its end.",
     "Files may be missing, and others may be those of an older set.",
     "Run the same mediatool create again: it goes on where it stopped."},

    // The lists of checksums.
    {"checksum-list-missing", Warning, "The volume has no list of checksums; others have one.",
     "Nobody can tell whether its files are whole, or those of another volume.", kWriteList},
    {"checksum-list-unreadable", Error, "The list of checksums cannot be read.",
     "Nobody can tell whether the volume's files are whole.", kReadable},
    {"checksum-list-malformed", Error, "Line %1 of the list of checksums is none of sha256sum.",
     "What it was to name is not verified.", kWriteList},
    {"checksum-list-malformed/empty", Error, "The list of checksums is empty.",
     "What it was to name is not verified.", kWriteList},
    {"checksum-list-wrong-volume", Error,
     "The list of checksums does not fit here, but fits the files in %1.",
     "The lists, or the files, of the two volumes have changed places.",
     "Put each back; to rename the folders is right, to rename the markers is not."},
    {"checksum-list-wrong-volume/marker", Error,
     "The list of checksums names %1 and fits the files here, but the marker is %2.",
     "The installer gets these files for those of another volume.",
     "Put the files into the folder of that volume, with %1 as their marker."},
    {"checksum-differs", Error, "The file is not the one of the list of checksums.",
     "It was damaged, or changed after the list was written.",
     "Copy it again from where it is whole; or write the list again, when it was meant to change: "
     "mediatool checksum --force."},
    {"checksum-differs/more", Error, "%1 more files are not those of the list of checksums.",
     kMoreOfThem, "Copy the volume again."},
    {"checksum-file-missing", Error, "The list of checksums names a file that is missing.",
     "The volume is not complete.",
     "Copy it again from where it is whole; or write the list again, when it was meant to go: "
     "mediatool checksum --force."},
    {"checksum-file-missing/more", Error, "%1 more files of the list of checksums are missing.",
     kMoreOfThem, "Copy the volume again."},
    {"checksum-file-unlisted", Warning, "The list of checksums does not name this file.",
     "Nobody can tell whether it belongs to the medium.",
     "Remove it; or write the list again, when it belongs there: mediatool checksum --force."},
    {"checksum-file-unlisted/more", Warning, "The list of checksums does not name %1 more files.",
     "Nobody can tell whether they belong to the medium.", kWriteList},
    {"checksum-file-unreadable", Error, "The file cannot be read to its end.",
     "The launcher's copy, and the installer, may take its beginning for the whole file.",
     "Clean the disc, or copy the medium again."},
    {"checksum-file-unreadable/more", Error, "%1 more files cannot be read to their end.",
     kMoreOfThem, "Clean the disc, or copy the medium again."},

    // The launcher, and what is beside it.
    {"launcher-missing", Error, "The launcher, setup.exe, is missing.", kNoStart,
     "Copy the launcher to the root of volume 1."},
    {"launcher-not-file", Error, "setup.exe is a folder.", kNoStart, kCopyLauncher},
    {"launcher-empty", Error, "setup.exe is empty.", kNoStart, kCopyLauncher},
    {"launcher-not-program", Error, "setup.exe is not a Windows program.", kNoStart, kCopyLauncher},
    {"launcher-cut-off", Error, "setup.exe is shorter than its headers say.", kCutOff,
     kCopyLauncher},
    {"launcher-wrong-machine", Error, "setup.exe is made for another kind of processor.",
     "It starts neither on 64-bit nor on 32-bit Windows for PCs.", kCopyLauncher},
    {"launcher-trailing-bytes", Warning, "%1 bytes follow the end of setup.exe.",
     "They are not part of the launcher: the file was damaged or changed after it was built.",
     kCopyLauncher},
    {"launcher-not-this-one", Error, "setup.exe is not this launcher%1.",
     "Another program starts, and these findings apply to this launcher only.", kCopyLauncher},
    {"launcher-other-version", Note, "setup.exe is version %1 of the launcher.",
     "These findings apply to version %2.", "Use the launcher and mediatool of one release."},
    {"launcher-not-signed", Note, "setup.exe carries no signature.",
     "When it asks for elevation, Windows calls its publisher unknown.",
     "Sign it before you ship it."},
    {"launcher-64-bit-only", Note,
     "There is an installer for 32-bit Windows, but the launcher is a 64-bit program.",
     "32-bit Windows cannot start it.",
     "Nothing, unless 32-bit Windows is to be served: then use the 32-bit launcher."},
    {"launcher-path-cut", Error,
     "The path of setup.exe has %1 characters; the launcher reads its own up to %2.",
     "It takes a cut path for its own and looks for the medium in the wrong folder.",
     "Put the medium into a folder with a shorter path."},
    {"launcher-redirection", Warning, "setup.exe.local is beside the launcher.",
     "Windows then loads libraries from the medium in place of the system's.", "Remove it."},
    {"launcher-foreign-manifest", Warning,
     "setup.exe.manifest is beside the launcher, which has its own inside.",
     "It is a leftover at best, and may ask for other rights on old systems.", "Remove it."},

    {"autorun-other-program", Warning, "autorun.inf starts %1, not the launcher.",
     "Anyone who inserts the disc and accepts what Windows offers gets that program.",
     "Write open=setup.exe into its section [autorun]."},

    // The entries of the root that are copied with the installer.
    {"root-entry-missing", Warning, "%1 is missing at the root of the medium.", kCopyWouldFail,
     "Add it; the launcher copies it and looks at nothing in it."},
    {"root-entry-missing/never-copied", Note, "%1 is missing at the root of the medium.",
     "Only a copy to the temporary folder needs it, and the launcher makes none of this medium.",
     "Nothing, or add it."},
    {"root-entry-missing/copied", Error, "%1 is missing at the root of the medium.", kCopyFails,
     "Add it; the launcher copies it and looks at nothing in it."},
    {"root-entry-is-folder", Warning, "%1 is a folder.",
     "It should be a file; the installer may look for one.", "Put the file in its place."},
    {"root-entry-unreadable", Warning, "%1 cannot be read.", kCopyWouldFail, kReadable},
    {"root-entry-unreadable/never-copied", Warning, "%1 cannot be read.",
     "Whoever needs it cannot open it.", kReadable},
    {"root-entry-unreadable/copied", Error, "%1 cannot be read.", kCopyFails, kReadable},
    {"names-cut-short", Error, "The names are cut to 8.3: this one was %1.",
     "The launcher looks for the full names. The disc was written without Joliet and UDF.",
     "Write the disc again, with Joliet or UDF."},
    {"inst-missing", Error, "The folder inst is missing.", kNotForWindows,
     "Add the folder with the installer or its flavour markers."},
    {"inst-is-file", Error, "inst is a file.", kNotForWindows,
     "Put the folder with the installer or its flavour markers in its place."},

    // The installers, one for each kind of Windows.
    {"not-for-windows", Error, "inst holds neither an installer nor a flavour marker.",
     "The launcher refuses the medium on every Windows: \"This media is not for Windows operating "
     "system.\"",
     "Add inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe, or inst\\common\\win_b64.installos when "
     "the installer comes on a medium of its own."},
    {"not-for-32-bit-windows", Note, "There is no installer for 32-bit Windows.",
     "The launcher refuses the medium there.",
     "Nothing, unless 32-bit Windows is to be served: then add inst\\intel_a."},
    {"only-32-bit-installer", Note, "There is only the 32-bit installer.",
     "64-bit Windows uses it too.",
     "Nothing, unless 64-bit Windows is to get one of its own: then add inst\\win_b64."},
    {"installer-on-other-media", Note, "There are flavour markers, but no installer.",
     "The launcher asks for the folder of the installer medium in a dialog, where an unattended "
     "run waits forever.",
     "Tell administrators of -installerPath and ZEP_TALVOR_Installer."},
    {"installer-never-used", Note, "win_csa64 and win_b64 both have an installer.",
     "The launcher takes the one in win_b64.", "Nothing, or remove the other."},
    {"installer-missing", Error, "The folder %1 has no installer in it.", "The launcher skips it.",
     "Add the installer; or, when it comes on a medium of its own, add inst\\common\\%2."},
    {"installer-missing/not-needed", Note, "The folder %1 has no installer in it.",
     "The launcher takes the one in %3.",
     "Nothing, when the folder is not meant to have one; otherwise add it."},
    {"installer-other-name", Warning, "The installer is missing; its folder has %1.", kOnlyThisName,
     "Give it that name; or nothing, when the installer comes on a medium of its own."},
    {"installer-other-name/surely", Error, "The installer is missing; its folder has %1.",
     kOnlyThisName, "Give it that name."},
    {"installer-misplaced", Error, "The installer is in the wrong folder.",
     "The launcher looks for it in inst\\%1\\code\\bin only.",
     "Move it there, with the files that belong to it."},
    {"installer-folder-unknown", Error, "The folder %1 has an installer in it.",
     "The launcher looks into win_b64, win_csa64 and intel_a only.",
     "Give the folder one of these names."},
    {"installer-in-two-places", Warning,
     "There is an installer below the folder 1 as well as below inst.",
     "From a separate installer medium, the launcher takes the one below 1; from the medium "
     "itself, the other.",
     "Keep one of them."},
    {"installer-is-folder", Error, "The installer is a folder.", kStartFails, kPutInstaller},
    {"installer-empty", Error, "The installer is empty.", kStartFails, kPutInstaller},
    {"installer-unreadable", Error, "The installer cannot be read.", kStartFails,
     "Let everyone read and run it."},
    {"installer-not-program", Error, "The installer is not a Windows program.", kStartFails,
     kPutInstaller},
    {"installer-cut-off", Error, "The installer is shorter than its headers say.", kCutOff,
     "Copy it again, and compare the sizes."},
    {"installer-is-library", Error, "The installer is a library, not a program.",
     "Windows cannot start it.", kPutInstaller},
    {"installer-32-bit-in-64-bit-folder", Warning,
     "The installer for 64-bit Windows is a 32-bit program.",
     "It runs, but sees only the 32-bit parts of the system.",
     "Use the 64-bit one, or the folder intel_a."},
    {"installer-64-bit-in-32-bit-folder", Error,
     "The installer for 32-bit Windows is a 64-bit program.", "32-bit Windows cannot start it.",
     "Use the 32-bit one, or the folder win_b64."},
    {"installer-wrong-machine", Error, "The installer is made for another kind of processor.",
     "Windows for PCs cannot start it.", "Use one for x64 or x86."},
    {"installer-path-too-long", Error, "The path of the installer has %1 characters.",
     "Windows starts programs whose paths have up to %2.",
     "Put the medium into a folder with a shorter path."},

    // The markers that say which Windows a medium is for.
    {"flavour-marker-missing", Note, "There is an installer for %1, but not its flavour marker.",
     "With ZEP_UseExternalInstaller set, the launcher refuses the medium.",
     "Add an empty file of this name."},
    {"flavour-marker-missing/beside-another", Note,
     "There is an installer for %1, but only the flavour marker of %2.",
     "With ZEP_UseExternalInstaller set, the launcher goes by that marker and looks for the "
     "installer in %2.",
     "Add an empty file of this name."},
    {"flavour-marker-is-folder", Warning, "The flavour marker is a folder.",
     "The launcher takes it all the same; other programs may not.",
     "Put an empty file in its place."},
    {"flavour-marker-double-extension", Error,
     "The name of the flavour marker goes on after .installos.", kMarkerUnseen, "Rename it to %1."},
    {"flavour-marker-unknown", Warning, "No kind of Windows has a flavour marker of this name.",
     kMarkerUnseen, "Use win_b64.installos, win_csa64.installos or intel_a.installos."},
    {"flavour-marker-misplaced", Error, "The flavour marker is in the wrong folder.",
     "The launcher looks for it in inst\\common only.", "Move it there."},

    // The count file, inst\volumes.txt.
    {"count-file-missing", Error, "There is a volume marker, 1.txt, but no count file.",
     "The launcher takes the disc set for a single medium, and does not tell the installer about "
     "the "
     "other volumes.",
     "Write inst\\volumes.txt with the number of volumes."},
    {"count-file-misplaced", Error, "The count file is in the wrong folder.", kOnlyInInst,
     "Move it into inst."},
    {"count-file-misspelt", Error, "The count file has the wrong name.", kOnlyInInst,
     "Rename it to volumes.txt."},
    {"count-file-is-folder", Error, "The count file is a folder.", kNoCount, kNumberAlone},
    {"count-file-unreadable", Error, "The count file cannot be read.", kNoCount, kNumberAlone},
    {"count-file-empty", Error, "The count file is empty.", kNoCount, kNumberAlone},
    {"count-file-utf16", Error, "The count file is in UTF-16.", kNoCount, kNumberAlone},
    {"count-file-utf16/read", Error, "The count file is in UTF-16.",
     "The launcher takes it for plain text, and reads the number only because a zero byte ends it.",
     kNumberAlone},
    {"count-file-bom", Error, "The count file begins with a byte-order mark.", kNoCount,
     kNumberAlone},
    {"count-file-blank-line-first", Error, "The first line of the count file is blank.", kNoCount,
     kNumberAlone},
    {"count-file-not-a-number", Error, "The first line of the count file is not a number.",
     kNoCount, kNumberAlone},
    {"count-file-out-of-range", Error, "The number of volumes is too large to be read.", kNoCount,
     kNumberAlone},
    {"count-file-negative", Error, "The number of volumes is below zero.", kTakenAsSingle,
     kNumberAlone},
    {"count-file-zero", Error, "The number of volumes is 0.", kTakenAsSingle, kNumberAlone},
    {"count-file-one", Note, "The number of volumes is 1.", kTakenAsSingle,
     "Nothing, or remove the file; with more volumes, write their number."},
    {"count-file-absurd", Error, "The number of volumes is %1.",
     "The launcher looks for as many as the file says, and not all of them are there.",
     kNumberAlone},
    {"count-file-double-cr", Error, "The first line ends with two carriage returns.", kHandedOn,
     kNumberAlone},
    {"count-file-cr-only", Error, "The lines end with carriage returns alone.",
     "The whole file is one line for the launcher, and goes to the installer as it stands.",
     kNumberAlone},
    {"count-file-control-character", Error, "There is a control character on the first line.",
     kHandedOn, kNumberAlone},
    {"count-file-more-than-number", Error, "The first line says more than a number: %1.", kHandedOn,
     kNumberAlone},
    {"count-file-blanks", Warning, "There are blanks around the number.", kHandedOn, kNumberAlone},
    {"count-file-plus-sign", Warning, "There is a plus sign in front of the number.", kHandedOn,
     kNumberAlone},
    {"count-file-leading-zeros", Warning, "There are zeros in front of the number.", kHandedOn,
     kNumberAlone},
    {"count-file-more-lines", Note, "The count file has more than one line.",
     "Only the first is read.", "Nothing, or remove the others."},
    {"count-file-in-later-volume", Warning, "A volume other than the first has a count file.",
     "The launcher reads only that of volume 1.", "Remove it."},

    // The text of a volume marker.
    {"volume-marker-is-folder", Error, "The marker is a folder.", kNoId, kWriteKey},
    {"volume-marker-unreadable", Error, "The marker cannot be read.", kNoId, kWriteKey},
    {"volume-marker-empty", Error, "The marker is empty.", kNoId, kWriteKey},
    {"volume-marker-utf16", Error, "The marker is in UTF-16.", kNoId, kWriteKey},
    {"volume-marker-bom", Warning, "The marker begins with a byte-order mark.",
     "It hides the first line from the launcher.", kWriteKey},
    {"volume-marker-bom/unread", Error, "The marker begins with a byte-order mark.", kNoId,
     kWriteKey},
    {"volume-marker-leading-blank", Error, "There is a blank in front of MTBDIR=.", kNoId,
     kWriteKey},
    {"volume-marker-lower-case", Error, "MTBDIR= is not in upper case.", kNoId, kWriteKey},
    {"volume-marker-blank-before-equals", Error, "There is a blank in front of the =.", kNoId,
     kWriteKey},
    {"volume-marker-no-equals", Error, "There is no = after MTBDIR.", kNoId, kWriteKey},
    {"volume-marker-no-id", Error, "No line begins with MTBDIR=.", kNoId, kWriteKey},
    {"volume-marker-two-ids", Warning, "The marker has two different identifiers.",
     "Only the first counts.", kWriteKey},
    {"volume-marker-double-cr", Error, "The line ends with two carriage returns.", kPartOfId,
     kWriteKey},
    {"volume-marker-cr-only", Error, "The lines end with carriage returns alone.",
     "The rest of the file counts as a part of the identifier.", kWriteKey},
    {"volume-marker-cr-only/unread", Error, "The lines end with carriage returns alone.",
     "The whole file is one line for the launcher, which does not begin with MTBDIR=.", kWriteKey},
    {"volume-id-empty", Error, "Nothing follows MTBDIR=.", kNoId, kWriteKey},
    {"volume-id-control-character", Error, "There is a control character in the identifier.",
     kPartOfId, kWriteKey},
    {"volume-id-leading-blank", Warning, "There is a blank after MTBDIR=.", kPartOfId, kWriteKey},
    {"volume-id-trailing-blank", Warning, "There is a blank after the identifier.", kPartOfId,
     kWriteKey},
    {"volume-id-quoted", Warning, "The identifier is in quotes.",
     "They count as a part of the identifier.", kWriteKey},
    {"volume-id-too-long", Error,
     "The identifier has %1 characters; an environment variable holds %2.",
     "The launcher compares it, but cannot hand it to the installer.",
     "Give the disc set a shorter identifier."},
    {"volume-id-not-utf8", Warning, "The identifier is not in UTF-8.",
     "The installer gets other characters in their place.", kWriteKey},

    // The volumes, each with its marker in its folder.
    {"volume-marker-missing", Error, "Volume %1 has no marker.", kNotThere,
     "Write the file with the line MTBDIR=%2."},
    {"volume-marker-missing/of-given", Error, "There is no volume marker in this folder.",
     "Nothing tells which volume it is.",
     "Write the file k.txt with the line MTBDIR=%1, where k is the number of the volume."},
    {"volume-too-deep", Error, "%1 is one folder too deep.",
     "The launcher looks for it in %2, where there is only this folder.",
     "Move all that is in the folder up, into %2."},
    {"volume-misplaced", Error, "Volume %1 is in a folder where the launcher does not look.",
     "It looks for the volume in %3.", "Move the folder there."},
    {"volume-not-unpacked", Error, "Volume %1 is still in its archive.",
     "The launcher looks for it in %2, and never in an archive.", "Unpack it into that folder."},
    {"volume-empty", Error, "There is nothing in volume %1 but its marker.",
     "The launcher tells the installer that the volume is there; the installer finds nothing in "
     "it.",
     "Add the content of the volume."},
    {"volume-marker-leading-zeros", Error, "The name of the marker begins with a zero.", kNotThere,
     "Rename it to %1."},
    {"volume-marker-double-extension", Error, "The name of the marker ends with .txt twice.",
     kNotThere, "Rename it to %1."},
    {"volume-marker-wrong-number", Error, kOtherMarker, kNotThere, "Rename the marker to %1."},
    {"volume-marker-wrong-number/in-its-folder", Error, kOtherMarker, kNotThere,
     "Rename the folder to %4, and leave the marker as it is."},
    {"volume-id-differs", Error, kIdDiffers, kOfAnotherSet, kSameId},
    {"volume-id-case-differs", Error, kIdDiffers, kOfAnotherSet, kSameId},
    {"volume-id-blanks-differ", Error, kIdDiffers, kOfAnotherSet, kSameId},
    {"volume-id-letters-differ", Error, kIdDiffers,
     "They look the same, but accented letters are one character in one of them and two in the "
     "other: the launcher takes the volume for one of another disc set, and gives up on all of "
     "them.",
     kSameId},
    {"volume-missing", Error, "%1",
     "The launcher finds some volumes and not others, and copies the installer to the temporary "
     "folder.",
     "Add what is missing, or write the right number into inst\\volumes.txt."},
    {"volume-missing/not-given", Error, "%1",
     "It is not among the given folders: nothing of it was checked.",
     "Give its folder too, or write the right number into inst\\volumes.txt."},
    {"volume-folder-named-otherwise", Error, "Volume %1 is in a folder named %2.",
     "The launcher looks for it in the folder %1 beside volume 1's.",
     "Rename the folder to %1, and leave the marker as it is."},
    {"volume-folder-named-otherwise/taken", Error,
     "Volume %1 is in a folder named %2, and volume 1 in the one named %1.",
     "The launcher looks for volume %1 in the folder %1 beside volume 1's.",
     "Give volume 1's folder another name, and this one the name %1; leave the markers as they "
     "are."},
    {"volume-number-twice", Warning, kSecondMarker,
     "The launcher does not read it; the installer may take the folder for that volume.",
     kRemoveMarker},
    {"volume-number-twice/in-volume-1", Error, kSecondMarker,
     "In volume 1's folder it makes the launcher look for all volumes there.", kRemoveMarker},
    {"volume-number-twice/given", Error, "Two of the given folders claim to be volume %1.",
     "The launcher can find only one of them.", "Give each volume a number of its own."},
    {"volume-beyond-count", Error, "There is a volume %1, but the count file says %2.",
     "The installer is not told about it.",
     "Write the right number into inst\\volumes.txt, or remove the marker."},
    {"volumes-mixed-layouts", Error, "Some volumes are in volume 1's folder and others beside it.",
     "The launcher looks beside it only when none is in it.",
     "Put all volumes into one folder, or each into a folder of its own."},
    {"volumes-at-drive-root", Error,
     "Volume 1 is at the root of a drive, and other volumes are in folders there.",
     "The launcher looks for them in the root of the current drive: it finds them only when it is "
     "started from this one.",
     "Put volume 1 into a folder of its own, 1, beside the others."},
    {"volumes-elsewhere", Warning, "Only volume 1 of %1 is here.", kInstallerAsks,
     "Nothing, when the others are on discs of their own: give validate the drives of all to check "
     "them; otherwise put them into one of the layouts."},
    {"volumes-on-other-drives", Warning, "Each volume is on a drive of its own.", kInstallerAsks,
     "Nothing, when they are discs that are inserted one after the other."},
    {"no-layout-fits", Error, "The given folders fit none of the three layouts.", kInstallerAsks,
     "Name the folders of the others by their numbers, beside that of volume 1."},
    {"volumes-not-found", Error, "The launcher does not find all volumes of this disc set.",
     "It copies the installer to the temporary folder and leaves the rest to it.",
     "Compare the folders with one of the layouts."},
    {"folder-other-medium", Error, "This is another medium, not a volume of this one.",
     "It has a launcher or a count file of its own, and no marker of this disc set.",
     "Leave it out, and give the volume that belongs here."},
    {"folder-not-a-volume", Error, "The launcher never looks into this folder.",
     "It finds all volumes that the count file counts without it.",
     "Write the right number into inst\\volumes.txt, or leave the folder out."},

    // The numbered outer volumes that those of a disc set may lie in.
    {"outer-marker-missing", Error, "Outer volume %1 has no marker.",
     "The launcher does not find volume %2 of the disc set, which is in the outer volumes.",
     "Write the file with the line MTBDIR=%3."},
    {"outer-marker-upper-case", Error,
     "The name of the outer volume's marker is not in lower case.", kNoOuterMarker,
     "Rename it to %1."},
    {"outer-marker-number-too-high", Error,
     "The number of the outer volume has more than two digits.", kNoOuterMarker, kNumberOuter},
    {"outer-marker-zero", Error, "The number of the outer volume is 0.", kNoOuterMarker,
     kNumberOuter},
    {"outer-marker-stray", Error,
     "A file above volume 1 has the name of an outer volume's marker, but is not one.",
     "When volumes are missing, the launcher takes it for one and looks no further up.",
     "Delete or rename it."},
    {"outer-markers-two", Error, "Two files in one folder look like markers of an outer volume.",
     "The launcher takes the one that the system lists first.", "Keep only one of them."},
    {"outer-marker-irregular", Error,
     "A file above volume 1 looks like the marker of outer volume %1.",
     "The launcher takes it for one and looks no further up.",
     "Rename or remove it; if it is one, name it %2."},
    {"outer-volume-at-drive-root", Error, "The outer volume is at the root of a drive.",
     "The other outer volumes have to be in folders beside its own.",
     "Copy the outer volumes into folders named by their numbers."},
    {"outer-volume-missing", Error, "%1",
     "For the launcher, the volumes of the disc set in them are not there.", "%2."},
    {"outer-inner-folder-missing", Error, "Volume %1 is not at its place in outer volume %2.",
     "It has to be below the same folders as volume 1, in one named by its number.",
     "Move it there."},
    {"outer-id-differs", Error, "The identifier is %1; the first outer volume has %2.",
     "The launcher takes it for a volume of another set, and gives up on all of them.",
     "Give all outer volumes the same identifier, to the letter."},
    {"outer-id-same", Warning, "The outer volumes have the same identifier as the volumes in them.",
     "The installer cannot tell one set from the other.",
     "Give the outer volumes an identifier of their own."},

    // All that is below inst, which is what a copy is made of.
    {"folder-unreadable", Error, "The folder cannot be listed.",
     "A copy of the medium has an empty folder in its place, or a part of it.",
     "Make it readable for everyone; if it is, the disc or the share is failing."},
    {"file-unreadable", Error, "The file cannot be read.",
     "A copy of the medium fails, and so may the installation.", kReadable},
    {"program-empty", Warning, "%1 is empty.",
     "Nothing can be started or loaded from it: copying stopped before the end of the file.",
     "Copy it again, and compare the sizes."},
    {"leftover", Note, "%1 was left behind by another program.", "It is shipped with the medium.",
     "Delete it, unless it is meant to be there."},
    {"name-differs-in-case", Error, "The name differs from %1, beside it, only in its capitals.",
     "Windows finds only one of the two.", kRename},
    {"name-reserved", Error, "%1 is the name of a device.",
     "Windows opens the device in place of the file.", kRename},
    {"name-reserved/with-extension", Error, "%1 begins with the name of a device.",
     "Before Windows 11 and Windows Server 2025, Windows opens the device in place of the file.",
     kRename},
    {"name-ends-in-dot-or-blank", Error, "The name ends with a dot or a blank.",
     "Windows drops it and does not find the file.", kRename},
    {"name-outside-oem-code-page", Note,
     "The name has characters that the console's code page lacks.",
     "remove.bat removes the file with its folder, but no batch script can name it.",
     "Nothing, unless one of your scripts names it."},
    {"path-too-long-in-copy", Warning, kTooLong,
     "A copy to the temporary folder, made when volumes are missing, would fail for users with "
     "long names.",
     kShorten},
    {"path-too-long-in-copy/never-copied", Note, kTooLong,
     "The launcher makes no copy of this medium; another program may.", kShorten},
    {"path-too-long-in-copy/copied", Error, kTooLong,
     "The medium is copied to the temporary folder before the installer starts, and the copy fails "
     "for users with long names.",
     kShorten},
    {"link", Warning, "This is a link to a %1.",
     "Discs and archives may carry the link without its target; a copy follows it.", kReplaceLink},
    {"link-broken", Error, "The link leads nowhere.",
     "The file is missing, and a copy of the medium fails or lacks it.", kReplaceLink},
    {"link-loop", Error, "The link leads to a folder that it is in.",
     "A copy of the medium never ends.", "Remove the link."},
    {"temp-outside-oem-code-page", Warning,
     "The temporary folder's name has characters outside ASCII.",
     "remove.bat names it in UTF-8, but the command processor reads the console's code page: the "
     "copy of the installer stays.",
     "Set TEMP to a folder with a plain name before the launcher starts."},
};

}  // namespace findings

}  // namespace launcher::mediatool
