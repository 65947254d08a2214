import { messages } from '../i18n'
import type { FormModel } from '../model/form'
import { fills, grows, isLine, isNarrow, isRadioGroup, present, type LayoutFacts } from '../model/layout'
import type { LayoutNode } from '../wire/protocol'
import { ControlView } from './control-view'
import { Tip } from './field'

function factsOf(form: FormModel): LayoutFacts {
  const find = (name: string) => form.controls.get(name)
  return {
    kindOf: name => find(name)?.kind,
    multiLine: name => find(name)?.multiLine ?? false,
    visible: name => find(name)?.visible.value ?? false,
    groupOf: name => find(name)?.group,
    usedLabel: name => form.usedLabels.has(name),
  }
}

interface NodeProps {
  form: FormModel
  node: LayoutNode
  depth: number
}

function Frame({ form, node, depth }: NodeProps & { node: LayoutNode & { frame: string; content: LayoutNode } }) {
  const control = form.controls.get(node.frame)
  const shown = control?.shown.value
  if (!control || !shown) return <Node form={form} node={node.content} depth={depth} />
  const titleId = `${control.id}-title`
  const caption = form.labelOf(shown)
  const facts = factsOf(form)
  const radio = isRadioGroup(node.content, facts)
  return (
    <section
      class={`frame${depth > 0 ? ' inner' : ''}`}
      role={radio ? 'radiogroup' : 'group'}
      aria-labelledby={caption === '' ? undefined : titleId}
      data-control={control.id}
      data-disabled={shown.enabled ? undefined : ''}
      aria-disabled={shown.enabled ? undefined : true}
      data-grow={grows(node) ? '' : undefined}
      data-fill={fills(node, facts) ? '' : undefined}
    >
      {caption !== '' && (
        <header class="frame-head" data-tip={shown.toolTip}>
          <h2 id={titleId}>{caption}</h2>
          <Tip control={control} shown={shown} />
        </header>
      )}
      <Node form={form} node={node.content} depth={depth + 1} />
    </section>
  )
}

function Node({ form, node, depth }: NodeProps) {
  const facts = factsOf(form)
  if (!present(node, facts)) return null
  const grow = grows(node) ? '' : undefined
  const fill = fills(node, facts) ? '' : undefined
  if ('control' in node) {
    const control = form.controls.get(node.control)
    if (!control) return null
    const kind = facts.kindOf(node.control)
    return (
      <div
        class={`leaf leaf-${kind?.toLowerCase()}`}
        data-grow={grow}
        data-fill={fill}
        data-narrow={isNarrow(node, facts) ? '' : undefined}
      >
        <ControlView control={control} />
      </div>
    )
  }
  if ('frame' in node) return <Frame form={form} node={node} depth={depth} />
  const [kind, children] =
    'column' in node
      ? (['column', node.column] as const)
      : 'row' in node
        ? (['row', node.row] as const)
        : (['grid', node.grid] as const)
  const line = kind === 'row' && isLine(children, facts)
  // A frame already is the group of its radio buttons.
  const radio = depth === 0 && isRadioGroup(node, facts)
  return (
    <div
      class={`node ${kind}${line ? ' line' : ''}`}
      data-grow={grow}
      data-fill={fill}
      data-shares={children.some(grows) ? '' : undefined}
      role={radio ? 'radiogroup' : undefined}
      aria-label={radio ? form.caption.value : undefined}
    >
      {children.map((child, place) => (
        <Node key={place} form={form} node={child} depth={depth} />
      ))}
    </div>
  )
}

export function FormView({ form }: { form: FormModel }) {
  const layout = form.layout.value
  if (!present(layout, factsOf(form))) return <p class="page-empty">{messages.value.emptyPage}</p>
  return <Node form={form} node={layout} depth={0} />
}
