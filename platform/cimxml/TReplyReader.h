// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/cimxml/ReplyElements.h"
#include "platform/cimxml/THttpSession.h"
#include "platform/cimxml/TReply.h"
#include "platform/cimxml/TValueFrame.h"
#include "platform/cimxml/TXmlRepair.h"
#include "platform/cimxml/TXmlStream.h"

namespace NZEPQEL20::cimxml {

/// Reads a reply while it arrives; what it keeps is what the reply says, not its text.
///
/// Hosts in paths are dropped, and a path without a namespace is given that of the request. A value
/// that its type cannot hold is NULL and counted; a method's return value and its job are errors
/// then, since neither must be guessed.
/// Errors: TQELException (kFailed) for a document that is not well-formed, no reply, or too large
/// to be sane.
/// Threads: one.
class TReplyReader final : public IReplyBody, private IXmlEvents {
 public:
  /// `nameSpace` is the one that the request was about.
  explicit TReplyReader(std::string nameSpace);

  void Take(const char* data, std::size_t size) override;

  /// Ends the document and hands over what it said.
  TReply Finish();

  /// The instance in an embedded object's text, or null for an embedded class.
  /// Errors: as above.
  static std::shared_ptr<const TCIMInstanceData> ReadEmbedded(std::string_view text,
                                                              const std::string& nameSpace);

 private:
  TReplyReader(std::string nameSpace, unsigned int level);

  void OnStart(std::string_view element, const char* const* attributes) override;
  void OnEnd() override;
  void OnText(std::string_view text) override;

  EElement GetParent(std::size_t up = 1) const;
  void PassOver(std::string_view element);
  void Note(const std::string& text);
  /// Ends the reply: it holds `what`.
  [[noreturn]] static void Refuse(const std::string& what);
  [[noreturn]] static void RefuseRoot(std::string_view element);
  /// Whether there is room for one more of the things that `things` holds.
  template <typename TThings>
  static void CheckRoom(const TThings& things, const char* what) {
    if (things.size() >= kMaxMembers)
      Refuse("more than " + std::to_string(kMaxMembers) + " " + what);
  }

  // Messages and their results.
  void Start(EElement element, const TAttributes& attributes);
  void End(EElement element);
  void StartMessage(EElement element, const TAttributes& attributes);
  void StartError(const TAttributes& attributes);
  void EndObject();
  void EndResult(EElement element);

  // Paths.
  bool StartPath(EElement element, const TAttributes& attributes);
  bool EndPath(EElement element);
  void StartNamespace(const std::string& name);
  void StartClassName(const TAttributes& attributes);
  void SetKey(const std::string& name, const TCIMValue& value);
  void EndKey();
  void EndResultPath();
  void EndReference();
  TCIMReference TakePath();

  // Values, and the properties that hold them.
  bool StartValue(EElement element, const TAttributes& attributes);
  bool EndValue(EElement element);
  void OpenValue(const TAttributes& attributes, std::string_view type);
  void EndScalar();
  std::shared_ptr<const TCIMInstanceData> FinishEmbedded(std::string_view text);
  std::shared_ptr<const TCIMInstanceData> ReadInner(const std::string& text);
  std::optional<TCIMValue> ReadText(ECIMType type);
  TCIMValue TakeValue();
  TCIMValue ReadScalar(const TValueFrame& frame);
  void StartInstance(const TAttributes& attributes);
  void EndInstance();

  // Classes.
  bool StartDeclaration(EElement element, const TAttributes& attributes);
  bool EndDeclaration(EElement element);
  void StartClassProperty(EElement element, const TAttributes& attributes);
  void StartMethod(const TAttributes& attributes);
  void StartParameter(EElement element, const TAttributes& attributes);
  void EndClassProperty();
  void EndQualifier();
  std::vector<TCIMQualifier>& GetQualifiers();
  bool IsInClass() const { return m_isInClass; }

  /// Properties of a class or instance, methods, parameters, qualifiers of a thing: four times what
  /// the most generous server takes.
  static constexpr std::size_t kMaxMembers = 4096;

  const std::string m_nameSpace;
  const unsigned int m_level;
  TReply m_reply;
  bool m_hasResponse = false;

  std::vector<EElement> m_open;  ///< Elements from the document's down to the current one.
  unsigned int m_skipped = 0;    ///< Elements open inside one that is passed over, itself too.
  bool m_takesText = false;
  std::string m_text;
  std::vector<TValueFrame> m_values;
  std::vector<TCIMReference> m_paths;
  struct TKeyFrame {
    std::string name;
    std::string valueType;
    std::string type;
  };
  std::vector<TKeyFrame> m_keys;
  TCIMInstanceData m_instance;
  bool m_hasInstance = false;
  std::size_t m_propertyCount = 0;  ///< Of the last instance: the next one likely has as many.
  bool m_isInClass = false;

  TXmlRepair m_repair;
  TXmlStream m_stream;
};

}  // namespace NZEPQEL20::cimxml
