/// Selection dialogs: the user picks an entry from a list of numbers and names.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/context.h"
#include "platform/ui.h"
#include "zelk98/zelk98.h"

namespace frame {

/// The orders of every list.
enum class SelectionOrder { Number, Name };

/// Receives the entries of a list one by one, in its order; Windows-1252.
using AddEntry = std::function<void(std::string_view number, std::string_view name)>;

/// Delivers a list. Called when the dialog opens and whenever the user changes the order; the host may have called the
/// library in between, from its window procedures.
/// \return 1, or why the list cannot be had
using FillSelection = std::function<ZelkResult(SelectionOrder order, const AddEntry &add)>;

/// What a selection dialog does, without the windows.
class Selection final : public platform::Selection {
public:
  /// \param title string id
  Selection(int title, SelectionOrder order, FillSelection fill);

  /// \return 1, or why the list cannot be had
  ZelkResult refill();

  /// 1 when a line was confirmed, 0 when none was, or why the list could not be had.
  ZelkResult result() const { return result_; }
  /// The number of the line confirmed, read off the line; Windows-1252.
  const std::string &chosen() const { return chosen_; }

  std::string title() const override;
  int orderCount() const override { return 2; }
  std::string orderName(int order) const override;
  int order() const override { return int(order_); }
  size_t lineCount() const override { return lines_.size(); }
  std::string line(size_t index) const override;
  std::optional<size_t> selected() const override { return selected_; }
  bool switchOrder(int order) override;
  void search(const std::string &typed) override;
  void select(size_t index) override;
  bool confirm() override;

private:
  int title_;
  SelectionOrder order_;
  FillSelection fill_;
  std::vector<std::string> lines_;
  std::string typed_;
  std::optional<size_t> selected_;
  ZelkResult result_ = ZELK_keinKonto;
  std::string chosen_;
};

/// Shows a list in a dialog, in the order that the thread's last such dialog had.
/// \param chosen receives the number of the entry picked
/// \return 1 picked, 0 cancelled, or why the list cannot be had
ZelkResult choose(ThreadContext &context, int title, const FillSelection &fill, void *parent, std::string &chosen);

} // namespace frame
