import type { Kind, LayoutNode } from '../wire/protocol'

/** What the layout asks of the forms' controls. */
export interface LayoutFacts {
  kindOf(name: string): Kind | undefined
  multiLine(name: string): boolean
  visible(name: string): boolean
  groupOf(name: string): string | undefined
  /** Labels that are drawn with the control that they name. */
  usedLabel(name: string): boolean
}

export function leaves(node: LayoutNode): string[] {
  return 'control' in node ? [node.control] : children(node).flatMap(leaves)
}

function children(node: LayoutNode): readonly LayoutNode[] {
  if ('column' in node) return node.column
  if ('row' in node) return node.row
  if ('grid' in node) return node.grid
  return 'frame' in node ? [node.content] : []
}

/** The innermost frame around each control and each frame. */
export function framesAround(
  node: LayoutNode,
  frame?: string,
  found = new Map<string, string>(),
): ReadonlyMap<string, string> {
  const name = 'control' in node ? node.control : 'frame' in node ? node.frame : undefined
  if (name !== undefined && frame !== undefined) found.set(name, frame)
  for (const child of children(node)) framesAround(child, 'frame' in node ? node.frame : frame, found)
  return found
}

/** The controls that stand in grids: settings, each with room for a line that explains it. */
export function gridded(node: LayoutNode): string[] {
  const own = 'grid' in node ? node.grid.flatMap(child => ('control' in child ? [child.control] : [])) : []
  return [...own, ...children(node).flatMap(gridded)]
}

/** A container takes the space that is left when something inside it does: the space has to reach it. */
export function grows(node: LayoutNode): boolean {
  return node.grow === true || children(node).some(grows)
}

/** Whether the height that is left makes sense for the node: lists and long texts use it, a line of text does not. */
export function fills(node: LayoutNode, facts: LayoutFacts): boolean {
  if ('control' in node) return node.grow === true && isTall(node.control, facts)
  if (node.grow && leaves(node).some(name => isTall(name, facts))) return true
  return !('grid' in node) && children(node).some(child => fills(child, facts))
}

/** Whether anything of the node is to be seen. */
export function present(node: LayoutNode, facts: LayoutFacts): boolean {
  if ('frame' in node) return facts.visible(node.frame) && present(node.content, facts)
  return leaves(node).some(name => {
    const kind = facts.kindOf(name)
    return kind !== undefined && kind !== 'Timer' && facts.visible(name) && !facts.usedLabel(name)
  })
}

const narrow = new Set<Kind | undefined>(['Button', 'Label', 'CheckBox', 'OptionButton', 'Link'])
const lists = new Set<Kind | undefined>(['ListBox', 'DriveList', 'FolderList', 'FileList', 'Table'])

function isTall(name: string, facts: LayoutFacts): boolean {
  return lists.has(facts.kindOf(name)) || facts.multiLine(name)
}

/** A leaf that is as wide as its content, in contrast to fields, which share the width of their row. */
export function isNarrow(node: LayoutNode, facts: LayoutFacts): boolean {
  return 'control' in node && narrow.has(facts.kindOf(node.control))
}

/** A row of single-line controls, or of such rows, stands on one base line; one with lists or groups starts at the top. */
export function isLine(nodes: readonly LayoutNode[], facts: LayoutFacts): boolean {
  return nodes.every(node => ('control' in node ? !isTall(node.control, facts) : 'row' in node && isLine(node.row, facts)))
}

/** True when the node holds the option buttons of one group and nothing else. */
export function isRadioGroup(node: LayoutNode, facts: LayoutFacts): boolean {
  const names = leaves(node).filter(name => !facts.usedLabel(name))
  const group = names[0] === undefined ? undefined : facts.groupOf(names[0])
  return names.length > 1 && names.every(name => facts.kindOf(name) === 'OptionButton' && facts.groupOf(name) === group)
}
