#include "tests/contract/Absence.h"

#include "HostModel/Attribute.h"
#include "HostModel/AttributePath.h"
#include "HostModel/Lookup.h"
#include "tests/contract/Notes.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

namespace HostContract {

namespace {

void expectNoMember(Scene &scene, const char *path) {
  EXPECT_EQ(EntityModel::findAttribute(scene.partA(), EntityModel::AttributePath(path)), nullptr) << path;
}

} // namespace

void expectAbsent(Scene &scene, Capability capability) {
  EntityModel::ModelVersion *next = scene.follow(scene.base(), "Next");
  const Notes notes(scene);
  switch (capability) {
  case Capability::NotifyingSwitches:
    scene.show(next);
    EXPECT_TRUE(notes.lines().empty());
    return;
  case Capability::QuietCreation:
    scene.tree().startNewVersion("Another", "", "", "", nullptr, scene.base(), false);
    EXPECT_TRUE(!notes.lines().empty() || scene.current()->getLabel() == "Another");
    return;
  case Capability::MoreKinds:
    expectNoMember(scene, "Count");
    expectNoMember(scene, "Material");
    expectNoMember(scene, "Law");
    return;
  case Capability::Units:
    expectNoMember(scene, "Length");
    EXPECT_FALSE(scene.attribute(scene.partA(), "Width").isQuantity());
    return;
  case Capability::UserCommands:
    EXPECT_FALSE(scene.subject().switchByUser(next));
    EXPECT_FALSE(scene.subject().editByUser(scene.partA(), EntityModel::AttributePath("Width"), "5"));
    EXPECT_FALSE(scene.subject().relabelByUser(next, "Other"));
    EXPECT_FALSE(scene.subject().destroyByUser(next));
    EXPECT_FALSE(scene.subject().closeByUser());
    return;
  case Capability::Persistence:
    EXPECT_FALSE(scene.subject().save(scene.folder() + "/project"));
    EXPECT_FALSE(scene.subject().reopen());
    return;
  case Capability::Store:
    EXPECT_EQ(scene.tree().getVersionFolder(next, true), "");
    return;
  }
}

} // namespace HostContract
