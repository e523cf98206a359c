// Values, their texts, and the copies that stand in the cells of the matrix.

#include "HostModel/EntityEditor.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

namespace HostContract {

using EntityModel::Attribute;

namespace {

std::unique_ptr<Attribute> copyOf(const Scene &scene, EntityModel::Entity *entity, const char *path) {
  std::unique_ptr<Attribute> copy = scene.attribute(entity, path).clone();
  if (copy == nullptr) {
    throw std::logic_error(std::string("There is no copy of ") + path);
  }
  return copy;
}

} // namespace

std::vector<Rule> valueRules() {
  return {
      {"Value_Text_GivesTheSameNumberBack",
       [](Scene &scene) {
         const std::pair<const char *, double> rows[] = {
             {"0.30000000000000004", 0.1 + 0.2},
             {"0.1", 0.1},
             {"-2.5", -2.5},
             {"123456789.125", 123456789.125},
             {"1e22", 1e22},
             {"1e-300", 1e-300},
             {"0", 0.0},
             {"-1e300", -1e300},
             {"1.7976931348623157e308", std::numeric_limits<double>::max()},
         };
         for (const auto &[text, number] : rows) {
           scene.set(scene.partA(), "Width", text);
           EXPECT_EQ(scene.number(scene.partA(), "Width"), number) << text;
           scene.set(scene.partB(), "Width", scene.text(scene.partA(), "Width"));
           EXPECT_EQ(scene.number(scene.partB(), "Width"), number) << text;
           EXPECT_EQ(scene.text(scene.partB(), "Width"), scene.text(scene.partA(), "Width")) << text;
         }
       }},
      {"Value_Text_OfACopy_IsThatOfTheModel",
       [](Scene &scene) {
         for (const char *path : {"Width", "Ratio", "Open", "Note", "Mass"}) {
           EXPECT_EQ(copyOf(scene, scene.partA(), path)->getValueAsString(), scene.text(scene.partA(), path))
               << path;
         }
         const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partA(), "Width");
         cell->setValueFromString("7.5");
         scene.set(scene.partA(), "Width", "7.5");
         EXPECT_EQ(cell->getValueAsString(), scene.text(scene.partA(), "Width"));
       }},
      {"Value_Boolean_IsOneOrZero",
       [](Scene &scene) {
         EXPECT_EQ(scene.text(scene.partA(), "Open"), "1");
         EXPECT_EQ(scene.number(scene.partA(), "Open"), 1.0);
         EXPECT_EQ(scene.attribute(scene.partA(), "Open").getIntValue(), 1);
         scene.set(scene.partA(), "Open", "0");
         EXPECT_EQ(scene.text(scene.partA(), "Open"), "0");
         EXPECT_EQ(scene.number(scene.partA(), "Open"), 0.0);
       }},
      {"Value_Note_KeepsItsBytes",
       [](Scene &scene) {
         for (const std::string &text : {std::string(" any \n text\t"), std::string("%1%s\"'\\"),
                                         std::string("\xFF\x80 no UTF-8"), std::string("1,5")}) {
           scene.set(scene.partA(), "Note", text);
           EXPECT_EQ(scene.text(scene.partA(), "Note"), text);
         }
         EXPECT_EQ(scene.number(scene.partA(), "Note"), 0.0);
         EXPECT_FALSE(scene.attribute(scene.partA(), "Note").isNumeric());
       }},
      {"Value_Result_HasNoneAtFirst",
       [](Scene &scene) {
         const Attribute &mass = scene.attribute(scene.partA(), "Mass");
         EXPECT_FALSE(mass.hasValue());
         EXPECT_EQ(mass.getValueAsString(), "");
         EXPECT_EQ(mass.getStandardValue(), 0.0);
         EXPECT_EQ(mass.getNumericValue(), 0.0);
         EXPECT_EQ(mass.getIntValue(), 0);
         EXPECT_FALSE(copyOf(scene, scene.partA(), "Mass")->hasValue());
       }},
      {"Value_Numbers_HaveANumericValue",
       [](Scene &scene) {
         scene.set(scene.partA(), "Width", "6.5");
         const Attribute &width = scene.attribute(scene.partA(), "Width");
         EXPECT_TRUE(width.isNumeric());
         EXPECT_EQ(width.getNumericValue(), 6.5);
         EXPECT_EQ(width.getStandardValue(), 6.5);
         EXPECT_TRUE(scene.attribute(scene.partA(), "Open").isNumeric());
       }},
      {"Value_Int_IsTruncatedAndClamped",
       [](Scene &scene) {
         const std::pair<const char *, int> rows[] = {{"2.9", 2},
                                                      {"-2.9", -2},
                                                      {"1e300", std::numeric_limits<int>::max()},
                                                      {"-1e300", std::numeric_limits<int>::min()}};
         for (const auto &[text, number] : rows) {
           scene.set(scene.partA(), "Width", text);
           EXPECT_EQ(scene.attribute(scene.partA(), "Width").getIntValue(), number) << text;
         }
       }},
      {"Value_WithoutUnits_IsTheNumberItself",
       [](Scene &scene) {
         const Attribute &ratio = scene.attribute(scene.partA(), "Ratio");
         EXPECT_FALSE(ratio.isQuantity());
         EXPECT_EQ(ratio.getUnits(0), "");
         EXPECT_EQ(ratio.getValueInUnits("mm"), 0.5);
         EXPECT_EQ(ratio.getValueInUnits(""), 0.5);
         EXPECT_EQ(ratio.getUpperIndex(), 0);
       }},
      {"Value_TypeDescription_IsEqualWhereAValueMayBeShared",
       [](Scene &scene) {
         const auto description = [&scene](EntityModel::Entity *entity, const char *path) {
           return scene.attribute(entity, path).getTypeDescription();
         };
         EXPECT_EQ(description(scene.partA(), "Width"), description(scene.partB(), "Width"));
         EXPECT_EQ(description(scene.partA(), "Width"), description(scene.partA(), "Ratio"));
         EXPECT_NE(description(scene.partA(), "Width"), description(scene.partA(), "Note"));
         EXPECT_NE(description(scene.partA(), "Width"), description(scene.partA(), "Open"));
         EXPECT_EQ(copyOf(scene, scene.partA(), "Width")->getTypeDescription(),
                   description(scene.partA(), "Width"));
       }},
      {"Value_Choice_HasItsOrdinalFromOneAsText",
       [](Scene &scene) {
         const Attribute &material = scene.attribute(scene.partA(), "Material");
         EXPECT_EQ(material.getValueAsString(), "2");
         EXPECT_EQ(material.getStandardValue(), 2.0);
         EXPECT_EQ(material.getIntValue(), 2);
         EXPECT_EQ(material.getUpperIndex(), 2);
         scene.set(scene.partA(), "Material", "3");
         EXPECT_EQ(material.getValueAsString(), "3");
         EXPECT_THROW(scene.set(scene.partA(), "Material", "4"), std::exception);
         EXPECT_THROW(scene.set(scene.partA(), "Material", "0"), std::exception);
         EXPECT_EQ(material.getValueAsString(), "3");
       },
       {Capability::MoreKinds}},
      {"Value_Integer_TakesWholeNumbersOnly",
       [](Scene &scene) {
         scene.set(scene.partA(), "Count", "-5");
         EXPECT_EQ(scene.text(scene.partA(), "Count"), "-5");
         EXPECT_EQ(scene.number(scene.partA(), "Count"), -5.0);
         EXPECT_THROW(scene.set(scene.partA(), "Count", "1.5"), std::exception);
         EXPECT_EQ(scene.text(scene.partA(), "Count"), "-5");
       },
       {Capability::MoreKinds}},
      {"Value_TypeReference_IsWrittenByLabel",
       [](Scene &scene) {
         EntityModel::TypeAttribute *law = scene.attribute(scene.partA(), "Law").asTypeAttribute();
         ASSERT_NE(law, nullptr);
         EXPECT_TRUE(law->getTypeValue().isEmpty());
         scene.set(scene.partA(), "Law", "Cubic");
         EXPECT_TRUE(law->getTypeValue() == EntityModel::TypeRef::fromLabel("Cubic"));
         EXPECT_THROW(scene.set(scene.partA(), "Law", "Square"), std::exception);
         EXPECT_EQ(scene.text(scene.partA(), "Law"), "Cubic");
         EXPECT_TRUE(law->hasSameTypes(*scene.attribute(scene.partB(), "Law").asTypeAttribute()));
       },
       {Capability::MoreKinds}},
  };
}

std::vector<Rule> copyRules() {
  return {
      {"Copy_IsDetached",
       [](Scene &scene) {
         const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partA(), "Width");
         EXPECT_EQ(cell->getOwnerEntity(), nullptr);
         scene.set(scene.partA(), "Width", "9");
         EXPECT_EQ(cell->getStandardValue(), 4.0);
         cell->setValueFromString("5");
         EXPECT_EQ(cell->getStandardValue(), 5.0);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 9.0);
       }},
      {"Copy_IsTheSameInEveryVersion",
       [](Scene &scene) {
         const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partA(), "Width");
         EntityModel::ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Width", "9");
         EXPECT_EQ(cell->getStandardValue(), 4.0);
         cell->setValueFromString("5");
         scene.show(scene.base());
         EXPECT_EQ(cell->getStandardValue(), 5.0);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         scene.show(next);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 9.0);
       }},
      {"Copy_OutlivesItsOriginal",
       [](Scene &scene) {
         const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partB(), "Width");
         ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(scene.partB(), false, true));
         EXPECT_EQ(cell->getStandardValue(), 4.0);
         cell->setValueFromString("5");
         EXPECT_EQ(cell->clone()->getStandardValue(), 5.0);
       }},
      {"Copy_OutlivesItsHost",
       [](Scene &scene) {
         std::vector<std::unique_ptr<Attribute>> cells;
         {
           Scene other(scene.kind());
           for (const char *path : {"Width", "Open", "Note", "Mass", "Next", "Parts"}) {
             cells.push_back(copyOf(other, other.partA(), path));
           }
           cells.push_back(other.partA()->clone());
         }
         EXPECT_EQ(cells[0]->getStandardValue(), 4.0);
         cells[0]->setValueFromString("5");
         EXPECT_EQ(cells[0]->clone()->getStandardValue(), 5.0);
         EXPECT_EQ(cells[1]->getValueAsString(), "1");
         EXPECT_EQ(cells[2]->getValueAsString(), "");
         EXPECT_FALSE(cells[3]->hasValue());
       }},
      {"Copy_EmptyText_OfANumber_Throws",
       [](Scene &scene) {
         for (const char *path : {"Width", "Open", "Mass"}) {
           scene.set(scene.partA(), path, "1");
           const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partA(), path);
           EXPECT_THROW(cell->setValueFromString(""), std::exception) << path;
           EXPECT_TRUE(cell->hasValue()) << path;
           EXPECT_EQ(cell->getStandardValue(), 1.0) << path;
         }
       }},
      {"Copy_BadText_ThrowsAndChangesNothing",
       [](Scene &scene) {
         const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partA(), "Width");
         for (const char *text : {"wide", "1,5", "1 2", "--1", " "}) {
           EXPECT_THROW(cell->setValueFromString(text), std::exception) << text;
           EXPECT_EQ(cell->getStandardValue(), 4.0) << text;
         }
         EXPECT_THROW(copyOf(scene, scene.partA(), "Open")->setValueFromString("2"), std::exception);
       }},
      {"Copy_AssignValue_TakesValueAndAbsence",
       [](Scene &scene) {
         const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partA(), "Width");
         scene.set(scene.partB(), "Width", "0.30000000000000004");
         cell->assignValue(scene.attribute(scene.partB(), "Width"));
         EXPECT_EQ(cell->getStandardValue(), 0.1 + 0.2);
         scene.set(scene.partB(), "Width", "");
         cell->assignValue(scene.attribute(scene.partB(), "Width"));
         EXPECT_FALSE(cell->hasValue());
         EXPECT_EQ(cell->getValueAsString(), "");
         const std::unique_ptr<Attribute> note = copyOf(scene, scene.partA(), "Note");
         scene.set(scene.partB(), "Note", "x");
         note->assignValue(scene.attribute(scene.partB(), "Note"));
         EXPECT_EQ(note->getValueAsString(), "x");
       }},
      {"Copy_Limits_CanBeClearedAndSet",
       [](Scene &scene) {
         const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partA(), "Width");
         cell->setOptionalMaximum(5.0);
         cell->setOptionalMinimum(3.0);
         EXPECT_THROW(cell->setValueFromString("6"), std::exception);
         EXPECT_THROW(cell->setValueFromString("2"), std::exception);
         cell->setValueFromString("5");
         EXPECT_EQ(cell->getStandardValue(), 5.0);
         cell->setOptionalMaximum(std::nullopt);
         cell->setOptionalMinimum(std::nullopt);
         cell->setValueFromString("600");
         EXPECT_EQ(cell->getStandardValue(), 600.0);
         scene.set(scene.partA(), "Width", "700");
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 700.0);
       }},
      {"Copy_OfAnEntity_HasItsName",
       [](Scene &scene) {
         const std::unique_ptr<Attribute> name = scene.partA()->clone();
         ASSERT_NE(name, nullptr);
         EXPECT_EQ(name->getValueAsString(), "A");
         EXPECT_EQ(name->getOwnerEntity(), nullptr);
       }},
  };
}

std::vector<Rule> unitRules() {
  return {
      {"Units_Quantity_SaysSo",
       [](Scene &scene) {
         EXPECT_TRUE(scene.attribute(scene.partA(), "Length").isQuantity());
         EXPECT_EQ(scene.attribute(scene.partA(), "Length").getUnits(0), "mm");
         EXPECT_EQ(scene.number(scene.partA(), "Length"), 0.1);
       },
       {Capability::Units}},
      {"Units_ValueInUnits_IsConverted",
       [](Scene &scene) {
         const Attribute &length = scene.attribute(scene.partA(), "Length");
         EXPECT_EQ(length.getValueInUnits("mm"), 100.0);
         EXPECT_EQ(length.getValueInUnits("cm"), 10.0);
         EXPECT_EQ(length.getValueInUnits(length.getUnits(0)), 100.0);
       },
       {Capability::Units}},
      {"Units_Unknown_GivesTheStandardValue",
       [](Scene &scene) {
         for (const char *units : {"", "s", "no unit"}) {
           EXPECT_EQ(scene.attribute(scene.partA(), "Length").getValueInUnits(units), 0.1) << units;
         }
       },
       {Capability::Units}},
      {"Units_Text_IsReadBack",
       [](Scene &scene) {
         scene.set(scene.partA(), "Length", "250");
         EXPECT_EQ(scene.number(scene.partA(), "Length"), 0.25);
         scene.set(scene.partB(), "Length", scene.text(scene.partA(), "Length"));
         EXPECT_EQ(scene.number(scene.partB(), "Length"), 0.25);
         EXPECT_EQ(scene.attribute(scene.partB(), "Length").getUnits(0), "mm");
       },
       {Capability::Units}},
      {"Units_OfACopy_AreThoseOfTheModel",
       [](Scene &scene) {
         const std::unique_ptr<Attribute> cell = copyOf(scene, scene.partA(), "Length");
         EXPECT_TRUE(cell->isQuantity());
         EXPECT_EQ(cell->getUnits(0), "mm");
         cell->setValueFromString("300");
         EXPECT_EQ(cell->getStandardValue(), 0.3);
         cell->assignValue(scene.attribute(scene.partA(), "Length"));
         EXPECT_EQ(cell->getValueInUnits("mm"), 100.0);
       },
       {Capability::Units}},
      {"Units_Description_TellsQuantitiesFromNumbers",
       [](Scene &scene) {
         EXPECT_NE(scene.attribute(scene.partA(), "Length").getTypeDescription(),
                   scene.attribute(scene.partA(), "Width").getTypeDescription());
       },
       {Capability::Units}},
  };
}

} // namespace HostContract
