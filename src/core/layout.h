#pragma once

#include <initializer_list>
#include <vector>

namespace zrl {

class Control;
class Frame;

// How a form is laid out: a tree that hosts draw as they can, without sizes or positions. Nodes refer to
// controls of the form, which must outlive them.
//
//   set_layout(column({headline, frame(Frame1, grid({checkmx, ehlo})), row({Command1, Command2})}));
//
// A control that a label names brings the label along, so the label is not part of the tree. Timers are not
// laid out. A control must occur at most once; one that does not occur is not shown.
struct LayoutNode {
  enum class Kind { control, column, row, grid, frame };

  LayoutNode(Control& shown) : kind(Kind::control), control(&shown) {}  // NOLINT(google-explicit-constructor)
  LayoutNode(Kind node_kind, Control* frame_control, std::vector<LayoutNode> nodes)
      : kind(node_kind), control(frame_control), children(std::move(nodes)) {}

  Kind kind;
  Control* control;  // the control, or the frame of a frame node
  std::vector<LayoutNode> children;
  bool grows = false;
  bool folds = false;
};

// One below the other.
LayoutNode column(std::initializer_list<LayoutNode> nodes);
// Side by side, wrapping where there is no room.
LayoutNode row(std::initializer_list<LayoutNode> nodes);
// In equal columns, as many as fit.
LayoutNode grid(std::initializer_list<LayoutNode> nodes);
// A titled group. The controls inside lie in the frame: they are disabled and hidden with it, and
// option buttons in it exclude each other.
LayoutNode frame(Frame& title, LayoutNode content);
// The node takes the space that is left over, in the direction of its parent. Without effect for hosts that
// do not draw.
LayoutNode grow(LayoutNode node);
// A frame that few people need: hosts that draw show its content on demand. Its controls can be used all the
// same, so hosts without a screen need not care.
LayoutNode fold(LayoutNode node);

}  // namespace zrl
