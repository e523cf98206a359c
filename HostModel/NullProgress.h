#pragma once

#include "HostModel/Export.h"

#include <memory>

namespace Tools::Progress {

/// What may come with a step of progress besides its number.
class HOSTMODEL_EXPORT AdditionalProgressAbstract {
public:
  virtual bool isInProgress() const = 0;
  virtual std::unique_ptr<AdditionalProgressAbstract> clone() const = 0;
  virtual ~AdditionalProgressAbstract();
  virtual bool equals(const AdditionalProgressAbstract &other) const = 0;
  virtual bool continues(const AdditionalProgressAbstract &other) const = 0;
  /// Whether \p other has nothing in progress either.
  virtual bool isNothing(const AdditionalProgressAbstract &other) const = 0;

protected:
  AdditionalProgressAbstract() = default;
  AdditionalProgressAbstract(const AdditionalProgressAbstract &) = default;
  AdditionalProgressAbstract &operator=(const AdditionalProgressAbstract &) = default;
};

/// Common answers of additional progress with \p N data members.
template <int N> class AdditionalProgressBase;

template <> class HOSTMODEL_EXPORT AdditionalProgressBase<0> : public AdditionalProgressAbstract {
public:
  bool isInProgress() const override;
  bool isNothing(const AdditionalProgressAbstract &other) const override;
};

/// Nothing comes with the step.
class HOSTMODEL_EXPORT AdditionalProgressNone final : public AdditionalProgressBase<0> {
public:
  bool isInProgress() const override;
  std::unique_ptr<AdditionalProgressAbstract> clone() const override;
  ~AdditionalProgressNone() override;
  bool equals(const AdditionalProgressAbstract &other) const override;
  bool continues(const AdditionalProgressAbstract &other) const override;

  /// The one shared instance of the process.
  static const AdditionalProgressNone &shared();
};

/// A state of progress that can be compared and copied.
class HOSTMODEL_EXPORT ProgressAbstract {
public:
  /// Number of steps in progress.
  virtual int stepsInProgress() const = 0;
  virtual ~ProgressAbstract();
  virtual std::unique_ptr<ProgressAbstract> clone() const = 0;
  virtual bool isRunning() const = 0;
  virtual bool isFinished() const = 0;
  virtual bool equals(const ProgressAbstract &other) const = 0;
  virtual bool continues(const ProgressAbstract &other) const = 0;
  /// Whether \p other has no steps in progress either.
  virtual bool isNothing(const ProgressAbstract &other) const = 0;

protected:
  ProgressAbstract() = default;
  ProgressAbstract(const ProgressAbstract &) = default;
  ProgressAbstract &operator=(const ProgressAbstract &) = default;
};

/// Common base of states with \p N data members on top of \p Base.
template <int N, class Base> class ProgressBase : public Base {};

/// A state without data.
template <int N> class ProgressNoData;

template <> class HOSTMODEL_EXPORT ProgressNoData<0> : public ProgressBase<0, ProgressAbstract> {
public:
  int stepsInProgress() const override;
  bool isRunning() const override;
  bool isFinished() const override;
  bool isNothing(const ProgressAbstract &other) const override;
};

/// Nothing is in progress.
class HOSTMODEL_EXPORT None final : public ProgressNoData<0> {
public:
  ~None() override;
  std::unique_ptr<ProgressAbstract> clone() const override;
  bool equals(const ProgressAbstract &other) const override;
  bool continues(const ProgressAbstract &other) const override;
};

} // namespace Tools::Progress
