#include "cli/Commands.h"

#include <cstring>
#include <vector>

#include "cli/FileOpsCommand.h"
#include "cli/FindCommand.h"
#include "cli/ListCommand.h"

namespace cli {

int RunSettingsCommand(CliContext& ctx);
int RunViewCommand(CliContext& ctx);
int RunVersionCommand(CliContext& ctx);
int RunReportCommand(CliContext& ctx);
int RunRenameCommand(CliContext& ctx);

// Each command lives in its own file and is listed here.

std::span<const Command> AllCommands() {
  static const Command commands[] = {
      {"list",
       "[--size-format N] [--date-style 0..3] [--time-style 0..3] [--sort COLUMN[:asc|:desc]] [--no-group] "
       "[--no-header] FOLDER",
       "list a folder as the file list shows it (status on standard error)", RunListCommand},
      {"drives", "[--size-format N] [--sort COLUMN[:asc|:desc]] [--no-header]",
       "list the drives (mounted file systems) as the file list shows them", RunDrivesCommand},
      {"find",
       "[--in FOLDER]... [--subfolders] [--named TEXT] [--exact] [--size-min N] [--size-max N] "
       "[--size-unit bytes|kb|mb] [--date-kind created|modified|accessed|created-or-modified] [--date-from TEXT] "
       "[--date-to TEXT] [--not] [--attr LETTERS] [--not-attr LETTERS] [--containing TEXT] [--case] [--hex] "
       "[--exclude TEXT]... [--threads N] [--sort COLUMN[:asc|:desc]] [--no-group] [--rel-path] [--no-header]",
       "find files as the Find Files tab does (a group counts when one of its options is given; sizes in KB "
       "unless --size-unit; contents read on N threads, one per core by default; summary on standard error)",
       RunFindCommand},
      {"view", "[--hex] [--extract] [--international] [--lines FROM:TO] FILE",
       "a file as the File View tab shows it: text lines, or a hex dump (--hex for text files), or the text runs "
       "of a binary file (--extract); the status texts on standard error",
       RunViewCommand},
      {"settings", "[--defaults] [--write] [--screen WxH] [--no-header]",
       "show every setting as the settings file holds it; --write saves them all", RunSettingsCommand},
      {"version", "[--fixed-text|--string-text] FILE...",
       "the version information of Windows executables, libraries, drivers and fonts as the Version tab shows it",
       RunVersionCommand},
      {"media", "[--play] [--from FRACTION] [--windows-dir FOLDER] FILE",
       "the format and length of a sound, MIDI or video file; --play plays it to the end (position on standard "
       "error)",
       nullptr},
      {"image", "[--fit WxH] [--zoom] [--decode] FILE|FOLDER...",
       "the facts and size line of pictures as the Preview tab shows them (a folder: its pictures); --fit gives "
       "the area the picture is fitted to, --zoom enlarges small ones, --decode decodes each one to be sure",
       nullptr},
      {"copy", "[--dry-run] [--on-conflict skip|rename|overwrite] SOURCE... FOLDER",
       "copy files and folders into a folder (one row per item; summary on standard error)", RunCopyCommand},
      {"move", "[--dry-run] [--on-conflict skip|rename|overwrite] SOURCE... FOLDER",
       "move files and folders into a folder (a rename within one file system)", RunMoveCommand},
      {"backup", "[--dry-run] [--no-recurse] SOURCE... DESTINATION",
       "copy what is new or newer into DESTINATION, with a dated log beside it", RunBackupCommand},
      {"trash", "[--dry-run] [--for-good] PATH...", "move to the trash (--for-good: delete for good)",
       RunTrashCommand},
      {"report",
       "tree|dump|list [--recurse] [--versions] [--fixed] [--sep tab|semicolon|comma|fixed|TEXT] [--date] "
       "[--no-specs] [list and find options] [--out FILE [--append] [--stamp]] FOLDER",
       "a folder's tree or classic dump (with file versions), or the folder or a find's results as an exported "
       "list; to standard output or a file written whole",
       RunReportCommand},
      {"mkdir", "[--new-folder | --new-text-file | --structure-from SOURCE] FOLDER...",
       "make folders, a new folder or text file inside one, or a source's folder tree", RunMkdirCommand},
      {"rename", "--how proper|lower|upper|htm|underscore|umlauts|dos [--dry-run] PATH... | --undo LOG [--dry-run]",
       "rename entries by a fixed transformation of their names, never onto an existing entry (\"old => new\" "
       "per change; refusals on standard error); --undo puts back the last batch of an undo log",
       RunRenameCommand},
  };
  return commands;
}

namespace {

struct Attached {
  const char* name;
  CommandRunner run;
};

std::vector<Attached>& AttachedRunners() {
  static std::vector<Attached> runners;
  return runners;
}

}  // namespace

void AttachCommand(const char* name, CommandRunner run) { AttachedRunners().push_back({name, run}); }

CommandRunner RunnerOf(const Command& command) {
  if (command.run) return command.run;
  for (const Attached& a : AttachedRunners())
    if (std::strcmp(a.name, command.name) == 0) return a.run;
  return nullptr;
}

}  // namespace cli
