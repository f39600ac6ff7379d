#ifndef ZM_CONFIG_CHECK_H
#define ZM_CONFIG_CHECK_H

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ZmConfigCheckTypes.h"
#include "ZmConfigHash.h"
#include "ZmExport.h"

class ZmConfigSurvey;

/// Tells what is wrong in a macro configuration file, where, and where each value comes from.
///
/// The format is silent: a line without "=" ends the file, an empty value takes the next line, a
/// misspelt reference is no error. This class watches ZmConfigFile's own reader at work and
/// judges what it sees by a table of rules:
///
///     if (const auto check = ZmConfigCheck::frompath("farm.conf"))
///       for (const auto& finding : check->findings())
///         std::cout << finding.place.line << ": " << finding.text << '\n';
///
/// There is one finding for each place of the text, however many sections share it. Lines and
/// columns count from 1, columns in bytes, in the text as it was given. One thread at a time.
class ZM_EXPORT ZmConfigCheck : public ZmConfigCheckTypes {
 public:
  /// Every rule, in a fixed order.
  static const std::vector<const Rule*>& rules();
  /// The rule of this name; null when there is none.
  static const Rule* rule(std::string_view name);

  /// Reads and judges a file; null when it can't be opened or read to its end, or is too large for
  /// ZmConfigFile (see ZmFile). Pipes are read, too.
  static std::unique_ptr<ZmConfigCheck> frompath(const std::string& path,
                                                 unsigned char lowercase = 0);
  /// The same for what is left of an open file, as standard input, which stays open.
  static std::unique_ptr<ZmConfigCheck> fromfile(std::FILE* file, unsigned char lowercase = 0);
  /// Reads and judges the text, as ZmConfigFile would read it, `lowercase` included. One of
  /// 2,147,483,647 bytes or more throws std::bad_alloc.
  explicit ZmConfigCheck(std::string text, unsigned char lowercase = 0);
  ~ZmConfigCheck();
  ZmConfigCheck(const ZmConfigCheck&) = delete;
  ZmConfigCheck& operator=(const ZmConfigCheck&) = delete;

  /// What was found, in the order of the text. Comments "# zmconfigcheck: ignore RULE" have been
  /// obeyed.
  const std::vector<Finding>& findings() const { return findings_; }
  /// The line that the place stands on, without its end.
  std::string_view line(const Place& place) const;
  /// The column of the byte at this offset of the text, counted in code points of UTF-8.
  long letter(std::size_t offset) const;
  /// Whether every option here is what its origin says. When not, there is a fault in this class.
  unsigned char consistent() const { return consistent_; }

  /// The sections as ZmConfigFile gives them; lent.
  const ZmConfigHash& sections() const;
  /// Where the option at this position of a section comes from.
  Origin origin(const ZmConfig& section, int label) const;
  /// How the option got its value. The text is read once more for it, and again for each level
  /// of references: 32 of them, deeper ones are not followed.
  History history(std::string_view section, std::string_view label) const;
  /// Who inherits from and refers to whom, in the DOT language: a node a header, solid arrows to
  /// parents and dashed ones to the sections that values refer to, in red what is missing and what
  /// leads back to itself. With `connected` only the nodes with arrows.
  ///
  /// @image html farm.svg "What dot draws of examples/farm.conf"
  std::string graph(unsigned char connected) const;
  /// Where the section begins: its first header, or the option that made it.
  Place place(const ZmConfig& section) const;

 private:
  std::string text_;
  std::unique_ptr<ZmConfigSurvey> survey_;
  std::vector<Finding> findings_;
  unsigned char lowercase_;
  unsigned char consistent_ = 1;
};

#endif
