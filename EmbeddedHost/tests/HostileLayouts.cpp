#include "EmbeddedHost/tests/HostileLayouts.h"

#include "EmbeddedHost/tests/ModelFixture.h"

#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace EmbeddedHost {

namespace fs = std::filesystem;

namespace {

using Build = std::function<void(const LayoutPlace &)>;

void makeNode(const std::string &path, mode_t kind, dev_t device = 0) {
  if (mknod(path.c_str(), kind | 0666U, device) == 0) {
    return;
  }
  if (device == 0) {
    throw std::runtime_error("no node for the test");
  }
  // Only the administrator may make devices; a link to one has to do for others.
  fs::create_symlink("/dev/zero", path);
}

// A folder with a file and what the function adds.
Build with(const Build &add) {
  return [add](const LayoutPlace &place) {
    fs::create_directories(place.version + "/inner");
    writeFile(place.version + "/result.txt", "own");
    writeFile(place.version + "/inner/deep.txt", "own");
    add(place);
  };
}

// A folder with a link of that name to a place relative to the canary.
Build withLink(const std::string &name, const std::string &target) {
  return with([name, target](const LayoutPlace &place) {
    fs::create_symlink(place.canary + target, place.version + "/" + name);
  });
}

Build withPlainLink(const std::string &name, const std::string &target) {
  return with(
      [name, target](const LayoutPlace &place) { fs::create_symlink(target, place.version + "/" + name); });
}

void makeChain(const LayoutPlace &place) {
  std::string target = place.canary;
  for (int link = 0; link < 5; ++link) {
    fs::create_symlink(target, place.version + "/chain" + std::to_string(link));
    target = "chain" + std::to_string(link);
  }
}

void makeDeepFolder(const LayoutPlace &place) {
  std::string path = place.version;
  for (int level = 0; level < 210; ++level) {
    path += "/d";
    fs::create_directory(path);
  }
  fs::create_symlink(place.canary, path + "/link");
}

void makeManyLinks(const LayoutPlace &place) {
  for (int link = 0; link < 100; ++link) {
    fs::create_symlink(place.canary, place.version + "/" + std::to_string(link));
  }
}

void makeOddNames(const LayoutPlace &place) {
  for (const std::string &name :
       {std::string("a\nb"), std::string("\x1b[2J"), std::string("\xff\xfe"), std::string("-rf"),
        std::string("*"), std::string(" "), std::string("..."), std::string("%s%n"), std::string("\\"),
        std::string(255, 'x'), std::string("~"), std::string("$(x)")}) {
    fs::create_symlink(place.canary, place.version + "/" + name);
  }
}

void makeOurOwnNames(const LayoutPlace &place) {
  fs::create_directories(place.version + "/unfinished");
  fs::create_symlink(place.canary, place.version + "/unfinished/0123456789abcdef");
  fs::create_symlink(place.canary, place.version + "/0123456789abcdef");
  fs::create_symlink(place.canary, place.version + "/old-0123456789abcdef");
}

void makeClosedFolder(const LayoutPlace &place) {
  fs::create_symlink(place.canary, place.version + "/inner/link");
  writeFile(place.version + "/closed", "own");
  fs::permissions(place.version + "/closed", fs::perms::owner_read);
}

Build inPlaceOfVersion(const std::string &target) {
  return [target](const LayoutPlace &place) {
    fs::create_symlink(place.canary + target, place.version);
  };
}

std::string nameOf(const std::string &path) {
  return fs::path(path).filename().string();
}

// The folder of versions itself moved away, with something else in its place.
Build inPlaceOfResults(const Build &build) {
  return [build](const LayoutPlace &place) {
    fs::remove_all(place.results);
    build(place);
  };
}

// The version's name is that of a folder which stands where the link leads.
void linkResultsToTwin(const LayoutPlace &place) {
  for (const std::string &name : {nameOf(place.version), nameOf(place.other)}) {
    if (fs::create_directory(place.canary + "/" + name)) {
      writeFile(place.canary + "/" + name + "/file", "canary");
    }
  }
  fs::create_symlink(place.canary, place.results);
}

Build beside(const Build &build) {
  return [build](const LayoutPlace &place) {
    with([](const LayoutPlace &) {})(place);
    build(place);
  };
}

} // namespace

std::vector<HostileLayout> hostileLayouts() {
  return {
      {"link to a file outside", withLink("link", "/file")},
      {"link to a folder outside", withLink("link", "")},
      {"link that looks like a result", with([](const LayoutPlace &place) {
         fs::remove(place.version + "/result.txt");
         fs::create_symlink(place.canary + "/result.txt", place.version + "/result.txt");
       })},
      {"link in place of an inner folder", with([](const LayoutPlace &place) {
         fs::remove_all(place.version + "/inner");
         fs::create_symlink(place.canary + "/inner", place.version + "/inner");
       })},
      {"link to a file outside that is not there", withLink("link", "/a/absent")},
      {"link in an inner folder", withLink("inner/link", "/a")},
      {"link to itself", withPlainLink("loop", "loop")},
      {"two links to each other", with([](const LayoutPlace &place) {
         fs::create_symlink("two", place.version + "/one");
         fs::create_symlink("one", place.version + "/two");
       })},
      {"link to its folder", withPlainLink("self", ".")},
      {"link to the folder above", withPlainLink("inner/up", "../..")},
      {"link to the project's folder", withPlainLink("up", "../..")},
      {"link to the top", withPlainLink("top", "/")},
      {"chain of links", with(makeChain)},
      {"many links", with(makeManyLinks)},
      {"links with odd names", with(makeOddNames)},
      {"links with names like our own", with(makeOurOwnNames)},
      {"link to another version's folder",
       with([](const LayoutPlace &place) { fs::create_symlink(place.other, place.version + "/other"); })},
      {"links to the project's files", with([](const LayoutPlace &place) {
         fs::create_symlink("../../fan.optstudy", place.version + "/project");
         fs::create_symlink("../../fan.optstudy.lock", place.version + "/lock");
       })},
      {"link at the end of a deep folder", with(makeDeepFolder), false, true},
      {"hard link to a file outside", with([](const LayoutPlace &place) {
         fs::create_hard_link(place.canary + "/../linked", place.version + "/hard");
       })},
      {"closed file beside a link", with(makeClosedFolder)},
      {"pipe", with([](const LayoutPlace &place) { makeNode(place.version + "/pipe", S_IFIFO); })},
      {"pipe in place of a result", with([](const LayoutPlace &place) {
         fs::remove(place.version + "/inner/deep.txt");
         makeNode(place.version + "/inner/deep.txt", S_IFIFO);
       })},
      {"socket", with([](const LayoutPlace &place) { makeNode(place.version + "/socket", S_IFSOCK); })},
      {"endless device",
       with([](const LayoutPlace &place) { makeNode(place.version + "/zero", S_IFCHR, makedev(1, 5)); })},
      {"block device",
       with([](const LayoutPlace &place) { makeNode(place.version + "/disk", S_IFBLK, makedev(7, 250)); })},
      {"link to an endless device", withPlainLink("zero", "/dev/zero")},
      {"folder outside in place of the folder", inPlaceOfVersion("")},
      {"inner folder outside in place of the folder", inPlaceOfVersion("/a")},
      {"file outside in place of the folder", inPlaceOfVersion("/file")},
      {"nothing outside in place of the folder", inPlaceOfVersion("/absent")},
      {"loop in place of the folder",
       [](const LayoutPlace &place) {
         fs::create_symlink(nameOf(place.version), place.version);
       }},
      {"pipe in place of the folder",
       [](const LayoutPlace &place) {
         makeNode(place.version, S_IFIFO);
       }},
      {"endless device in place of the folder",
       [](const LayoutPlace &place) {
         makeNode(place.version, S_IFCHR, makedev(1, 5));
       }},
      {"other version in place of the folder",
       [](const LayoutPlace &place) {
         fs::create_symlink(nameOf(place.other), place.version);
       }},
      {"twin outside in place of the results", inPlaceOfResults(linkResultsToTwin), true},
      {"nothing outside in place of the results", inPlaceOfResults([](const LayoutPlace &place) {
         fs::create_symlink(place.canary + "/absent", place.results);
       }),
       true},
      {"loop in place of the results",
       inPlaceOfResults([](const LayoutPlace &place) { fs::create_symlink("fan.results", place.results); }),
       true},
      {"pipe in place of the results",
       inPlaceOfResults([](const LayoutPlace &place) { makeNode(place.results, S_IFIFO); }), true},
      {"folder outside in place of the unfinished", beside([](const LayoutPlace &place) {
         fs::create_symlink(place.canary, place.results + "/unfinished");
       }),
       true},
      {"pipe in place of the unfinished",
       beside([](const LayoutPlace &place) { makeNode(place.results + "/unfinished", S_IFIFO); }), true},
      {"links among the unfinished", beside([](const LayoutPlace &place) {
         fs::create_directories(place.results + "/unfinished/fedcba9876543211");
         fs::create_symlink(place.canary, place.results + "/unfinished/fedcba9876543211/link");
         fs::create_symlink(place.canary, place.results + "/unfinished/0123456789abcdef");
         fs::create_symlink(place.canary, place.results + "/unfinished/old-" + nameOf(place.version));
         fs::create_symlink(place.canary, place.results + "/unfinished/old-0123456789abcdef");
       })},
  };
}

} // namespace EmbeddedHost
