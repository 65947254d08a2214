import type { Kind, LayoutNode } from '../protocol'

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
  if ('control' in node) return [node.control]
  if ('column' in node) return node.column.flatMap(leaves)
  if ('row' in node) return node.row.flatMap(leaves)
  if ('grid' in node) return node.grid.flatMap(leaves)
  return leaves(node.content)
}

/** A container grows when something inside it does: the space has to reach it. */
export function grows(node: LayoutNode): boolean {
  if (node.grow) return true
  if ('column' in node) return node.column.some(grows)
  if ('row' in node) return node.row.some(grows)
  if ('frame' in node) return grows(node.content)
  return false
}

/** Whether anything of the node is to be seen. */
export function present(node: LayoutNode, facts: LayoutFacts): boolean {
  if ('frame' in node) return facts.visible(node.frame) && present(node.content, facts)
  return leaves(node).some(name => {
    const kind = facts.kindOf(name)
    return kind !== undefined && kind !== 'Timer' && facts.visible(name) && !facts.usedLabel(name)
  })
}

const narrow = new Set<Kind | undefined>(['Button', 'Label', 'CheckBox', 'OptionButton'])
const tall = new Set<Kind | undefined>(['ListBox', 'DriveList', 'FolderList', 'FileList'])

/** A leaf that is as wide as its content, in contrast to fields, which share the width of their row. */
export function isNarrow(node: LayoutNode, facts: LayoutFacts): boolean {
  return 'control' in node && narrow.has(facts.kindOf(node.control))
}

/** A row of single-line controls stands on one base line; one with lists or groups starts at the top. */
export function isLine(nodes: readonly LayoutNode[], facts: LayoutFacts): boolean {
  return nodes.every(node => 'control' in node && !tall.has(facts.kindOf(node.control)) && !facts.multiLine(node.control))
}

/** True when the node holds the option buttons of one group and nothing else. */
export function isRadioGroup(node: LayoutNode, facts: LayoutFacts): boolean {
  const names = leaves(node).filter(name => !facts.usedLabel(name))
  const group = names[0] === undefined ? undefined : facts.groupOf(names[0])
  return names.length > 1 && names.every(name => facts.kindOf(name) === 'OptionButton' && facts.groupOf(name) === group)
}
