// Uses each installed library by something that lies in the library, not only in its headers.

#include "ExpressionBuilder/BuilderSingleType.h"
#include "HostModel/AttributePath.h"
#include "OptimizationTool/OptimizationManager.h"

#include <iostream>

int main() {
  const ExpressionBuilder::BuilderSingleType<double> numbers;
  const ExpressionBuilder::BuilderSingleType<std::string> texts;
  const auto &manager = OptimizationTool::OptimizationManager::instance();
  std::cout << numbers.buildExpression("1 + 2 * 1.75")->evaluate() << '\n'
            << texts.buildExpression(R"("a" + "b")")->evaluate() << '\n'
            << EntityModel::AttributePath("Fan.Speed").toString('.') << '\n'
            << (manager.canBeginStudy(nullptr) ? "study" : "no study") << '\n';
}
