#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/ModellingImpact.h"

#include <cmath>
#include <limits>
#include <stdexcept>

namespace EmbeddedHost {
namespace {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::EntityEditor;

class ModelAttributeTest : public ModelTest {
protected:
  std::string refusal(const std::string &path, const std::string &value) {
    const std::string before = text(partA, path);
    try {
      set(partA, path, value);
    } catch (const std::invalid_argument &error) {
      EXPECT_EQ(text(partA, path), before);
      return error.what();
    }
    return "accepted";
  }
};

TEST_F(ModelAttributeTest, ValueTexts_RoundTrip) {
  const struct {
    const char *path;
    const char *written;
    const char *read;
    double standard;
  } rows[] = {
      {"Width", "250", "250 mm", 0.25},
      {"Width", "0.5 m", "0.5 m", 0.5},
      {"Width", "1.5", "1.5 m", 1.5},
      {"Width", " 20cm ", "20 cm", 0.2},
      {"Ratio", "0.30000000000000004", "0.30000000000000004", 0.1 + 0.2},
      {"Ratio", "+1e3", "1000", 1000.0},
      {"Ratio", "-0", "-0", 0.0},
      {"Ratio", "inf", "inf", std::numeric_limits<double>::infinity()},
      {"Count", "-5", "-5", -5.0},
      {"Count", " +7 ", "7", 7.0},
      {"Open", "0", "0", 0.0},
      {"Open", "true", "1", 1.0},
      {"Open", "false", "0", 0.0},
      {"Material", "3", "3", 3.0},
      {"Material", "Steel", "1", 1.0},
      {"Note", " any \n text\t", " any \n text\t", 0.0},
      {"Note", "", "", 0.0},
      {"Law", "Cubic", "Cubic", 0.0},
      {"Law", "", "", 0.0},
      {"Mass", "2.5", "2.5 kg", 2.5},
      {"Size.Height", "4", "4", 4.0},
  };
  for (const auto &row : rows) {
    set(partA, row.path, row.written);
    EXPECT_EQ(text(partA, row.path), row.read) << row.written;
    EXPECT_EQ(attribute(partA, row.path).getStandardValue(), row.standard) << row.written;
  }
}

TEST_F(ModelAttributeTest, NotANumber_KeepsItsText) {
  set(partA, "Ratio", "nan");
  EXPECT_EQ(text(partA, "Ratio"), "nan");
  EXPECT_TRUE(std::isnan(attribute(partA, "Ratio").getNumericValue()));
}

TEST_F(ModelAttributeTest, BadTexts_AreRefusedAndChangeNothing) {
  const struct {
    const char *path;
    const char *text;
    const char *problem;
  } rows[] = {
      {"Width", "wide", "Width: \"wide\" is no number"},
      {"Width", "1,5",
       "Width: \"1,5\" has no valid unit: The unit \",5\" is unknown; products are written as in N.m, "
       "powers as in m2."},
      {"Width", "3 s", "Width: \"3 s\" is not in a unit that can be converted to m"},
      {"Width", "3 C",
       "Width: \"3 C\" is not in a unit that can be converted to m (\"C\" is the coulomb; degrees Celsius "
       "are "
       "\"degC\")"},
      {"Width", "3 EUR",
       "Width: \"3 EUR\" has no valid unit: The unit \"EUR\" is refused: a currency is no unit of "
       "measurement; declare a plain number and name the currency in its label."},
      {"Width", "-1", "Width: \"-1\" is below the minimum 0 m"},
      {"Width", "2.001 m", "Width: \"2.001 m\" is above the maximum 2 m"},
      {"Width", "nan", "Width: \"nan\" is below the minimum 0 m"},
      {"Ratio", "1 m", "Ratio: \"1 m\" is no number: this value has no units"},
      {"Ratio", "1,5", "Ratio: \"1,5\" is no number: this value has no units"},
      {"Ratio", "1e999", "Ratio: \"1e999\" is no number"},
      {"Count", "1.0", "Count: \"1.0\" is no whole number"},
      {"Count", "101", "Count: \"101\" is above the maximum 100"},
      {"Open", "2", "Open: \"2\" is neither 0 nor 1"},
      {"Material", "0", "Material: \"0\" is no option; options are 1 to 3"},
      {"Material", "4", "Material: \"4\" is no option; options are 1 to 3"},
      {"Law", "Square", "Law: \"Square\" is no type that may stand here"},
      {"Next", "nobody",
       "Next: \"nobody\" names no entity; the text of a link ends in \"#\" and the entity's number"},
      {"Driver", "x", "Driver: \"x\" names no attribute; write the entity, \":\" and the attribute's path"},
      {"Parts", "x", "Parts: \"x\" cannot be set: this is no single value"},
      {"Size", "1", "Size: \"1\" cannot be set: this is no single value"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(refusal(row.path, row.text), row.problem);
  }
}

TEST_F(ModelAttributeTest, SetValueNoThrow_BadText_AnswersFalse) {
  EXPECT_FALSE(EntityEditor::setValueNoThrow(partA, AttributePath("Count"), "x", false, nullptr, true));
  EXPECT_EQ(text(partA, "Count"), "3");
  EXPECT_TRUE(EntityEditor::setValueNoThrow(partA, AttributePath("Count"), "4", false, nullptr, true));
  EXPECT_TRUE(EntityEditor::setValueNoThrow(partA, AttributePath("Open"), false, true));
  EXPECT_EQ(text(partA, "Open"), "0");
  EXPECT_FALSE(EntityEditor::setValueNoThrow(partA, AttributePath("Count"), true, true));
}

TEST_F(ModelAttributeTest, EditorSetsReadOnlyAndEqualValues) {
  EXPECT_TRUE(EntityEditor::setValue(partA, AttributePath("Mass"), "1 kg", false, nullptr, true, true));
  EXPECT_TRUE(EntityEditor::setValue(partA, AttributePath("Mass"), "1 kg", false, nullptr, true, true));
  EXPECT_EQ(text(partA, "Mass"), "1 kg");
}

TEST_F(ModelAttributeTest, EditorWithEmptyText_UnsetsNumbersOnly) {
  for (const char *path : {"Width", "Ratio", "Count", "Open", "Material", "Mass", "Cycles"}) {
    EXPECT_TRUE(EntityEditor::setValue(partA, AttributePath(path), "", false, nullptr, true, true));
    EXPECT_FALSE(attribute(partA, path).hasValue()) << path;
    EXPECT_EQ(text(partA, path), "") << path;
    EXPECT_FALSE(attribute(partA, path).isNumeric()) << path;
  }
  EXPECT_TRUE(EntityEditor::setValue(partA, AttributePath("Note"), "", false, nullptr, true, true));
  EXPECT_TRUE(attribute(partA, "Note").hasValue());
}

TEST_F(ModelAttributeTest, NullEntityAndMissingPath_AreNoErrors) {
  EXPECT_FALSE(EntityEditor::setValue(nullptr, AttributePath("Width"), "1", false, nullptr, true, true));
  EXPECT_FALSE(EntityEditor::setValue(partA, AttributePath("Nothing"), "1", false, nullptr, true, true));
}

TEST_F(ModelAttributeTest, Results_AreUnsetAtFirst) {
  for (const char *path : {"Mass", "Cycles", "Remark", "Field"}) {
    EXPECT_FALSE(attribute(partA, path).hasValue()) << path;
    EXPECT_EQ(text(partA, path), "");
    EXPECT_TRUE(attribute(partA, path).isReadOnly(false)) << path;
    EXPECT_EQ(attribute(partA, path).getStandardValue(), 0.0);
  }
}

TEST_F(ModelAttributeTest, ReadOnlyVersion_CountsOnlyWhenAskedFor) {
  project->currentVersion()->setReadOnlyVersion("true");
  EXPECT_FALSE(attribute(partA, "Width").isReadOnly(false));
  EXPECT_TRUE(attribute(partA, "Width").isReadOnly(true));
  EXPECT_TRUE(EntityEditor::setValue(partA, AttributePath("Width"), "1", false, nullptr, true, true));
}

TEST_F(ModelAttributeTest, EmptyText_OfNumericClone_Throws) {
  for (const char *path : {"Width", "Ratio", "Count", "Open", "Material"}) {
    const std::unique_ptr<Attribute> clone = attribute(partA, path).clone();
    EXPECT_THROW(clone->setValueFromString(""), std::exception) << path;
    EXPECT_TRUE(clone->hasValue()) << path;
  }
}

TEST_F(ModelAttributeTest, Clone_IsDetachedAndKeepsUnitsAndLimits) {
  const std::unique_ptr<Attribute> clone = attribute(partA, "Width").clone();
  set(partA, "Width", "1 m");

  EXPECT_EQ(clone->getValueAsString(), "100 mm");
  EXPECT_EQ(clone->getOwnerEntity(), nullptr);
  EXPECT_EQ(clone->getAttributePath().toString('.'), "Width");
  clone->setValueFromString("150");
  EXPECT_EQ(clone->getValueAsString(), "150 mm");
  EXPECT_EQ(text(partA, "Width"), "1 m");
  EXPECT_THROW(clone->setValueFromString("3 m"), std::invalid_argument);
}

TEST_F(ModelAttributeTest, ClearedLimits_AcceptAnything) {
  const std::unique_ptr<Attribute> clone = attribute(partA, "Count").clone();
  clone->setOptionalMinimum(std::nullopt);
  clone->setOptionalMaximum(std::nullopt);
  clone->setValueFromString("1000");
  EXPECT_EQ(clone->getIntValue(), 1000);
  clone->setValueFromString("-1000");
  EXPECT_EQ(clone->getIntValue(), -1000);
  clone->setOptionalMaximum(5.0);
  EXPECT_THROW(clone->setValueFromString("6"), std::invalid_argument);
  EXPECT_THROW(set(partA, "Count", "1000"), std::invalid_argument);
}

TEST_F(ModelAttributeTest, Clone_OutlivesTheProject) {
  auto other = Project::create(testSchema());
  EntityModel::Entity *part = other->createEntity("Part", other->rootEntity(), "Parts", "P");
  other->setValue(part, "Next", "P #" + std::to_string(Project::entityNumber(*part)));
  const std::unique_ptr<Attribute> width = other->attribute(part, "Width")->clone();
  const std::unique_ptr<Attribute> link = other->attribute(part, "Next")->clone();
  const std::unique_ptr<Attribute> parts = other->attribute(other->rootEntity(), "Parts")->clone();
  const std::unique_ptr<Attribute> name = part->clone();
  ASSERT_EQ(link->asLink()->getLinkedEntity(), part);
  other.reset();

  EXPECT_EQ(width->getValueAsString(), "100 mm");
  width->setValueFromString("7 cm");
  EXPECT_EQ(width->clone()->getStandardValue(), 0.07);
  EXPECT_EQ(link->asLink()->getLinkedEntity(), nullptr);
  EXPECT_EQ(link->getValueAsString(), "");
  EXPECT_EQ(parts->asList()->getCount(), 0);
  EXPECT_EQ(name->getValueAsString(), "P");
}

TEST_F(ModelAttributeTest, AssignValue_CopiesValueAbsenceAndUnit) {
  set(partB, "Width", "0.3 m");
  attribute(partA, "Width").assignValue(attribute(partB, "Width"));
  EXPECT_EQ(text(partA, "Width"), "0.3 m");

  const std::unique_ptr<Attribute> cell = attribute(partA, "Width").clone();
  set(partB, "Width", "");
  cell->assignValue(attribute(partB, "Width"));
  EXPECT_FALSE(cell->hasValue());
  EXPECT_THROW(cell->assignValue(attribute(partB, "Count")), std::invalid_argument);
}

TEST_F(ModelAttributeTest, Units_OfQuantities) {
  const Attribute &width = attribute(partA, "Width");
  EXPECT_TRUE(width.isQuantity());
  EXPECT_EQ(width.getUnits(0), "mm");
  EXPECT_EQ(width.getValueInUnits("cm"), 10.0);
  EXPECT_EQ(width.getValueInUnits(""), 0.1);
  EXPECT_EQ(width.getValueInUnits("s"), 0.1);
  EXPECT_EQ(width.getValueInUnits("nonsense"), 0.1);
  EXPECT_FALSE(attribute(partA, "Ratio").isQuantity());
  EXPECT_EQ(attribute(partA, "Ratio").getUnits(0), "");
  EXPECT_EQ(attribute(partA, "Ratio").getValueInUnits("mm"), 0.5);
}

TEST_F(ModelAttributeTest, IntValue_TruncatesAndClamps) {
  const struct {
    const char *text;
    int expected;
  } rows[] = {
      {"2.9", 2},
      {"-2.9", -2},
      {"1e300", std::numeric_limits<int>::max()},
      {"-1e300", std::numeric_limits<int>::min()},
      {"nan", 0},
      {"2147483647", std::numeric_limits<int>::max()},
      {"-2147483648", std::numeric_limits<int>::min()},
  };
  for (const auto &row : rows) {
    set(partA, "Ratio", row.text);
    EXPECT_EQ(attribute(partA, "Ratio").getIntValue(), row.expected) << row.text;
  }
}

TEST_F(ModelAttributeTest, Kinds_ExcludeEachOther) {
  const struct {
    const char *path;
    const char *kinds;
  } rows[] = {
      {"Width", "B"},  {"Count", "A"}, {"Material", "C"}, {"Open", "D"}, {"Next", "E"},   {"Law", "F"},
      {"Parts", "EG"}, {"Note", "H"},  {"Driver", "R"},   {"Size", "x"}, {"Field", "fB"}, {"Mass", "B"},
  };
  for (const auto &row : rows) {
    const Attribute &tested = attribute(partA, row.path);
    std::string kinds;
    kinds += tested.isMonitor() ? "f" : "";
    kinds += tested.isInternal() ? "x" : "";
    kinds += tested.isInteger() ? "A" : "";
    kinds += tested.isReal() ? "B" : "";
    kinds += tested.isChoice() ? "C" : "";
    kinds += tested.isBoolean() ? "D" : "";
    kinds += tested.isEntityLink() ? "E" : "";
    kinds += tested.isTypeReference() ? "F" : "";
    kinds += tested.isEntityList() ? "G" : "";
    kinds += tested.isText() ? "H" : "";
    kinds += tested.isAttributeReference() ? "R" : "";
    EXPECT_EQ(kinds, row.kinds) << row.path;
    EXPECT_FALSE(tested.isEntity());
  }
  EXPECT_EQ(attribute(partA, "Material").getUpperIndex(), 2);
  EXPECT_EQ(attribute(partA, "Count").getUpperIndex(), 0);
}

TEST_F(ModelAttributeTest, TypeDescription_IsEqualWhereValuesMayBeShared) {
  EXPECT_EQ(attribute(partA, "Width").getTypeDescription(), attribute(partB, "Width").getTypeDescription());
  EXPECT_NE(attribute(partA, "Width").getTypeDescription(), attribute(partA, "Ratio").getTypeDescription());
  EXPECT_NE(attribute(partA, "Material").getTypeDescription(),
            attribute(partA, "Count").getTypeDescription());
  EXPECT_EQ(attribute(partA, "Material").getTypeDescription(), "choice 5:Steel 6:Copper 3:Air");
}

TEST_F(ModelAttributeTest, TypeCodes_DifferByKindAndNeverAreNone) {
  EXPECT_NE(attribute(partA, "Width").getType().getKindCode(), EntityModel::Type::kNoKind);
  EXPECT_EQ(attribute(partA, "Width").getType().getKindCode(),
            attribute(partA, "Ratio").getType().getKindCode());
  EXPECT_NE(attribute(partA, "Width").getType().getKindCode(),
            attribute(partA, "Note").getType().getKindCode());
  EXPECT_EQ(attribute(partA, "Width").getType().getReference().getLabel(), "Width");
  EXPECT_EQ(partA->getType().getReference().getLabel(), "Part");
}

TEST_F(ModelAttributeTest, TypeAttributes_CompareWhatTheyAccept) {
  EntityModel::TypeAttribute *law = attribute(partA, "Law").asTypeAttribute();
  EXPECT_TRUE(law->getTypeValue().isEmpty());
  set(partA, "Law", "Linear");
  EXPECT_EQ(law->getTypeValue(), EntityModel::TypeRef::fromLabel("Linear"));
  EXPECT_TRUE(law->hasSameTypes(*attribute(partB, "Law").asTypeAttribute()));
}

TEST_F(ModelAttributeTest, AttributeReference_FollowsItsTarget) {
  const std::string number = std::to_string(Project::entityNumber(*partB));
  EXPECT_EQ(attribute(partA, "Driver").getReferencedAttribute(), nullptr);
  set(partA, "Driver", "B #" + number + ":Size.Depth");
  EXPECT_EQ(attribute(partA, "Driver").getReferencedAttribute(), &attribute(partB, "Size.Depth"));
  EXPECT_EQ(text(partA, "Driver"), "B #" + number + ":Size.Depth");
  const std::unique_ptr<Attribute> clone = attribute(partA, "Driver").clone();
  EXPECT_EQ(clone->getReferencedAttribute(), &attribute(partB, "Size.Depth"));
}

TEST_F(ModelAttributeTest, Locale_DoesNotChangeTexts) {
  set(partA, "Ratio", "1234567.25");
  EXPECT_EQ(text(partA, "Ratio"), "1234567.25");
  EXPECT_EQ(attribute(partA, "Ratio").getNumericValue(), 1234567.25);
}

TEST_F(ModelAttributeTest, NoSimulationEffect_OfAMemberOrOfAnOwningList) {
  using EntityModel::ModellingImpact;
  EntityModel::Entity *mark = project->createEntity("Mark", root, "Marks", "M");
  EXPECT_TRUE(ModellingImpact::hasModellingImpact(&attribute(partA, "Note"), "NoCFDImpact", false));
  EXPECT_FALSE(ModellingImpact::hasModellingImpact(&attribute(partA, "Width"), "NoCFDImpact", true));
  EXPECT_TRUE(ModellingImpact::hasModellingImpact(&attribute(mark, "Colour"), "NoCFDImpact", true));
  EXPECT_FALSE(ModellingImpact::hasModellingImpact(&attribute(mark, "Colour"), "NoCFDImpact", false));
  EXPECT_FALSE(ModellingImpact::hasModellingImpact(&attribute(partA, "Note"), "Other", true));
  EXPECT_FALSE(ModellingImpact::hasModellingImpact(nullptr, "NoCFDImpact", true));
}

} // namespace
} // namespace EmbeddedHost
