#pragma once

#include "testing/WrappedHost.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace HostTesting {

/// What the library is doing at a moment.
struct StudyState {
  bool isEditing = false;
  bool isSolving = false;
};

/// One call that reached the host.
struct RecordedCall {
  /// Operation and arguments, as in "ModelVersion::setLabel("Base", "Second")".
  std::string text;
  /// The operation alone, as in "ModelVersion::setLabel".
  std::string operation;
  StudyState state;
  /// Number of host calls and broadcasts in progress when this one was made.
  int depth = 0;
  /// Made by the host itself while it worked on another call.
  bool isByHost = false;
};

/// Records the calls that reach a host, in order, before they are forwarded.
///
/// By default the recording holds what changes something (the model, versions, stores, the state of the
/// application), notifications, and the look-ups of versions; neither other queries nor changes of copies of
/// attributes.
class RecordingHost : public WrappedHost {
public:
  /// Answers what the study is doing. Not called for the registration of observers, so that it may ask an
  /// object which registers itself while it is made.
  using StateQuery = std::function<StudyState()>;

  explicit RecordingHost(HostModel::Host &host);
  ~RecordingHost() override;

  void setStateQuery(StateQuery query);
  /// Records queries and changes of copies too.
  void recordEverything();
  /// Records also an operation that is left out by default.
  /// \throws std::invalid_argument "RecordingHost::record: No such operation: " and the name
  void record(const std::string &operation);
  /// Leaves an operation out.
  /// \throws std::invalid_argument "RecordingHost::ignore: No such operation: " and the name
  void ignore(const std::string &operation);

  const std::vector<RecordedCall> &calls() const { return m_calls; }
  void clear();

  /// The texts of the calls that the host did not make itself.
  std::vector<std::string> texts() const;
  /// As texts(), each after two letters and a blank: "E" or "-" for editing, "S" or "-" for solving.
  std::vector<std::string> textsWithState() const;
  /// The texts of all calls, each indented by two blanks for each call and broadcast around it.
  std::vector<std::string> tree() const;

protected:
  Verdict intercept(const HostCall &call) override;

private:
  bool isWanted(const HostCall &call) const;
  StudyState queryState(const std::string &operation);

  std::vector<RecordedCall> m_calls;
  StateQuery m_stateQuery;
  bool m_isQuerying = false;
  bool m_recordsEverything = false;
  std::set<std::string> m_recorded;
  std::set<std::string> m_ignored;
};

} // namespace HostTesting
