// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/query/TQuery.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "platform/cmpi/Border.h"
#include "platform/cmpi/query/Tokens.h"
#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20::cmpi {

namespace {

/// Brackets and NOTs within each other.
constexpr unsigned int kMaxNesting = 64;

bool IsOneOf(const std::string& text, std::initializer_list<const char*> words) {
  return std::any_of(words.begin(), words.end(),
                     [&](const char* word) { return IsSameName(text, word); });
}

TCIMValue ReadInteger(const TToken& token) {
  const bool isNegative = token.text[0] == '-';
  const std::string digits = token.text.substr(isNegative || token.text[0] == '+' ? 1 : 0);
  const bool isHex = digits.size() > 1 && (digits[1] == 'x' || digits[1] == 'X');
  errno = 0;
  const unsigned long long number = std::strtoull(digits.c_str(), nullptr, isHex ? 16 : 10);
  constexpr unsigned long long kLowest = 1ULL << 63U;
  if (errno != 0 || (isNegative && number > kLowest)) {
    RefuseQuery(token.at, "the number is too large");
  }
  if (!isNegative) return TCIMValue::Unsigned(ECIMType::kUInt64, number);
  // The lowest number has no positive counterpart.
  const auto value = number == kLowest ? INT64_MIN : -static_cast<std::int64_t>(number);
  return TCIMValue::Signed(ECIMType::kSInt64, value);
}

TCIMValue ReadReal(const TToken& token) {
  errno = 0;
  const double value = std::strtod(token.text.c_str(), nullptr);
  if (errno == ERANGE && value != 0) RefuseQuery(token.at, "the number is too large");
  return TCIMValue::Real64(value);
}

CMPIPredOp OperatorOf(const std::string& sign) {
  if (sign == "=") return CMPI_PredOp_Equals;
  if (sign == "<") return CMPI_PredOp_LessThan;
  if (sign == "<=") return CMPI_PredOp_LessThanOrEquals;
  if (sign == ">") return CMPI_PredOp_GreaterThan;
  if (sign == ">=") return CMPI_PredOp_GreaterThanOrEquals;
  return CMPI_PredOp_NotEquals;
}

/// The comparison with its sides exchanged.
CMPIPredOp Mirror(CMPIPredOp op) {
  switch (op) {
    case CMPI_PredOp_LessThan:
      return CMPI_PredOp_GreaterThan;
    case CMPI_PredOp_LessThanOrEquals:
      return CMPI_PredOp_GreaterThanOrEquals;
    case CMPI_PredOp_GreaterThan:
      return CMPI_PredOp_LessThan;
    case CMPI_PredOp_GreaterThanOrEquals:
      return CMPI_PredOp_LessThanOrEquals;
    default:
      return op;
  }
}

/// One side of a comparison.
struct TOperand {
  bool isProperty = false;
  std::string name;
  TCIMValue value;
};

}  // namespace

/// Reads a query by recursive descent.
class TQueryParser {
 public:
  explicit TQueryParser(const std::string& text) : m_tokens(Tokenize(text)) {
    m_query.m_text = text;
  }

  TQuery ParseSelect() {
    RequireWord("SELECT");
    const std::size_t list = m_at;
    SkipList();
    RequireWord("FROM");
    m_query.m_className = RequireName("a class name");
    if (Here().kind == EToken::kName && !IsWord(Here(), "WHERE")) m_alias = Take().text;
    const std::size_t rest = m_at;
    // Selected names may start with the class or its alias, which stand behind them.
    m_at = list;
    ReadList();
    m_at = rest;
    if (SkipWord("WHERE")) m_query.m_condition = ReadOr();
    return Finish();
  }

  TQuery ParseCondition() {
    m_query.m_condition = ReadOr();
    return Finish();
  }

 private:
  using TPointer = std::shared_ptr<const TCondition>;

  const TToken& Here() const { return m_tokens[m_at]; }
  const TToken& Take() { return m_tokens[Here().kind == EToken::kEnd ? m_at : m_at++]; }
  [[noreturn]] void Expected(const std::string& what) const {
    RefuseQuery(Here().at, "expected " + what + ", found " +
                               (Here().kind == EToken::kEnd ? "the end" : '"' + Here().text + '"'));
  }
  bool SkipWord(const char* word) {
    if (!IsWord(Here(), word)) return false;
    ++m_at;
    return true;
  }
  bool SkipSign(const char* sign) {
    if (!IsSign(Here(), sign)) return false;
    ++m_at;
    return true;
  }
  void RequireWord(const char* word) {
    if (!SkipWord(word)) Expected(word);
  }
  std::string RequireName(const char* what) {
    if (Here().kind != EToken::kName || IsReserved(Here().text)) Expected(what);
    return Take().text;
  }
  static bool IsReserved(const std::string& word) {
    return IsOneOf(word, {"SELECT", "FROM", "WHERE", "AND", "OR", "NOT", "IS", "ISA", "LIKE",
                          "NULL", "TRUE", "FALSE"});
  }

  TQuery Finish() {
    if (Here().kind != EToken::kEnd) Expected("AND, OR or the end");
    return std::move(m_query);
  }

  void SkipList() {
    while (Here().kind != EToken::kEnd && !IsWord(Here(), "FROM")) ++m_at;
  }

  void ReadList() {
    bool isAll = false;
    do {
      if (SkipSign("*")) {
        isAll = true;
      } else {
        std::string name = ReadProperty(true);
        isAll = isAll || name.empty();
        m_query.m_properties.push_back(std::move(name));
      }
    } while (SkipSign(","));
    if (isAll) m_query.m_properties.clear();
    if (!IsWord(Here(), "FROM")) Expected("\",\" or FROM");
  }

  /// A property's name without the class in front; empty for the object itself, and in a list for
  /// all of its properties.
  std::string ReadProperty(bool isInList = false) {
    std::string name;
    bool isFirst = true;
    do {
      if (isInList && !isFirst && SkipSign("*")) return name;
      const std::string part = RequireName("a property name");
      const bool isObject = isFirst && (IsSameName(part, m_query.m_className) ||
                                        (!m_alias.empty() && IsSameName(part, m_alias)));
      if (!isObject) name += (name.empty() ? "" : ".") + part;
      isFirst = false;
    } while (SkipSign("."));
    return name;
  }

  TPointer ReadOr() { return ReadSequence("OR", TCondition::EKind::kOr, &TQueryParser::ReadAnd); }
  TPointer ReadAnd() {
    return ReadSequence("AND", TCondition::EKind::kAnd, &TQueryParser::ReadNot);
  }

  TPointer ReadSequence(const char* word, TCondition::EKind kind,
                        TPointer (TQueryParser::*readOne)()) {
    TPointer first = (this->*readOne)();
    if (!IsWord(Here(), word)) return first;
    auto all = std::make_shared<TCondition>();
    all->kind = kind;
    all->operands.push_back(std::move(first));
    while (SkipWord(word)) all->operands.push_back((this->*readOne)());
    return all;
  }

  TPointer ReadNot() {
    if (++m_nesting > kMaxNesting) RefuseQuery(Here().at, "the query is nested too deeply");
    TPointer result;
    if (SkipWord("NOT")) {
      auto negation = std::make_shared<TCondition>();
      negation->kind = TCondition::EKind::kNot;
      negation->operands.push_back(ReadNot());
      result = negation;
    } else if (SkipSign("(")) {
      result = ReadOr();
      if (!SkipSign(")")) Expected("AND, OR or \")\"");
    } else {
      auto comparison = std::make_shared<TCondition>();
      comparison->predicate = ReadComparison();
      result = comparison;
    }
    --m_nesting;
    return result;
  }

  TOperand ReadOperand() {
    const TToken& token = Here();
    TOperand operand;
    if (token.kind == EToken::kText) {
      operand.value = TCIMValue(Take().text);
    } else if (token.kind == EToken::kInteger) {
      operand.value = ReadInteger(Take());
    } else if (token.kind == EToken::kReal) {
      operand.value = ReadReal(Take());
    } else if (IsWord(token, "TRUE") || IsWord(token, "FALSE")) {
      operand.value = TCIMValue::Boolean(IsWord(Take(), "TRUE"));
    } else if (!SkipWord("NULL")) {
      if (token.kind != EToken::kName || IsReserved(token.text)) {
        Expected("a property or a value");
      }
      operand.isProperty = true;
      operand.name = ReadProperty();
    }
    return operand;
  }

  TPredicate ReadComparison() {
    const std::size_t at = Here().at;
    TOperand left = ReadOperand();
    TPredicate predicate;
    predicate.property = left.name;
    if (left.isProperty) {
      if (ReadWordOperator(predicate)) return predicate;
    }
    if (Here().kind != EToken::kSign ||
        !IsOneOf(Here().text, {"=", "<>", "!=", "<", "<=", ">", ">="})) {
      Expected("a comparison");
    }
    predicate.op = OperatorOf(Take().text);
    TOperand right = ReadOperand();
    if (!left.isProperty) {
      std::swap(left, right);
      predicate.op = Mirror(predicate.op);
      predicate.property = left.name;
    }
    if (!left.isProperty) RefuseQuery(at, "a comparison needs a property");
    RequireNotObject(left, at);
    if (right.isProperty) RequireNotObject(right, at);
    predicate.value = right.value;
    predicate.otherProperty = right.name;
    if (!right.isProperty && right.value.IsNull()) CompareWithNull(predicate, at);
    return predicate;
  }

  /// Only ISA says something about an object as a whole.
  static void RequireNotObject(const TOperand& operand, std::size_t at) {
    if (operand.name.empty()) RefuseQuery(at, "a comparison needs a property, not a class");
  }

  static void CompareWithNull(TPredicate& predicate, std::size_t at) {
    if (predicate.op == CMPI_PredOp_Equals) {
      predicate.op = CMPI_PredOp_Null;
    } else if (predicate.op == CMPI_PredOp_NotEquals) {
      predicate.op = CMPI_PredOp_Not_Null;
    } else {
      RefuseQuery(at, "nothing is less or greater than NULL");
    }
  }

  /// IS NULL, LIKE and ISA, with NOT where it may stand.
  bool ReadWordOperator(TPredicate& predicate) {
    const std::size_t at = Here().at;
    if (SkipWord("IS")) {
      predicate.op = SkipWord("NOT") ? CMPI_PredOp_Not_Null : CMPI_PredOp_Null;
      RequireWord("NULL");
    } else if (SkipWord("ISA")) {
      predicate.op = CMPI_PredOp_Isa;
      const bool isText = Here().kind == EToken::kText && !Here().text.empty();
      predicate.value = TCIMValue(isText ? Take().text : RequireName("a class name"));
      return true;
    } else {
      const bool isNegated = SkipWord("NOT");
      if (!SkipWord("LIKE")) {
        if (isNegated) Expected("LIKE");
        return false;
      }
      predicate.op = isNegated ? CMPI_PredOp_NotLike : CMPI_PredOp_Like;
      if (Here().kind != EToken::kText) Expected("a text");
      predicate.value = TCIMValue(Take().text);
    }
    if (predicate.property.empty()) RefuseQuery(at, "a comparison needs a property, not a class");
    return true;
  }

  const std::vector<TToken> m_tokens;
  std::size_t m_at = 0;
  unsigned int m_nesting = 0;
  std::string m_alias;
  TQuery m_query;
};

TQuery TQuery::Parse(const std::string& text, const std::string& language) {
  if (IsOneOf(language, {"WQL", "CQL", "CIM:CQL", "DMTF:CQL"})) {
    return TQueryParser(text).ParseSelect();
  }
  if (IsOneOf(language, {"FQL", "DMTF:FQL"})) return TQueryParser(text).ParseCondition();
  throw TBrokerFault(
      CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED,
      "query language \"" + language + "\" is none of WQL, CIM:CQL, DMTF:CQL and DMTF:FQL");
}

bool TQuery::Matches(const IQueryObject& object) const {
  const std::string className = object.GetClassName();
  if (!m_className.empty() && !className.empty() && !object.IsA(className, m_className)) {
    return false;
  }
  return m_condition == nullptr || m_condition->Test(object).value_or(false);
}

}  // namespace NZEPQEL20::cmpi
