import { useState } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel, FormModel } from '../model/form'
import { fills, grows, isLine, isNarrow, isRadioGroup, leaves, present, type LayoutFacts } from '../model/layout'
import { recall, remember } from '../model/preferences'
import { explainGroup } from '../parts/group-help'
import { Icon } from '../parts/icon'
import type { LayoutNode } from '../wire/protocol'
import { ControlView } from './control-view'
import { Exchange } from './exchange'
import { nameOf } from './field'

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

/** What the controls of a group do, behind one button, where only a finger points. */
function GroupTip({ controls, caption }: { controls: ControlModel[]; caption?: string }) {
  const entries = controls
    .filter(control => control.visible.value && control.shown.value.toolTip && !control.form.explains(control))
    .map(control => ({ name: nameOf(control, control.shown.value), text: control.shown.value.toolTip ?? '' }))
  if (entries.length === 0) return null
  const title = caption ?? entries.map(entry => entry.name).join(', ')
  return (
    <button type="button" class="tip-button" aria-label={messages.value.help(title)} onClick={() => explainGroup(title, entries)}>
      <Icon name="info" />
    </button>
  )
}

const insideOf = (frame: ControlModel): ControlModel[] =>
  [...frame.form.controls.values()].filter(other => frame.form.frameAround(other.name) === frame)

type FrameNode = LayoutNode & { frame: string; content: LayoutNode; fold?: boolean }

/** What few people need: its content is there once somebody has unfolded it, on this device. Where it is for files of the console's
 *  machine, people exchange files of their own above it. */
function FoldedFrame({ form, node, depth, control }: NodeProps & { node: FrameNode; control: ControlModel }) {
  const key = `fold ${control.id}`
  const [open, setOpen] = useState(() => recall(key, 'device') === 'open')
  const fold = (): void => {
    remember(key, open ? '' : 'open', 'device')
    setOpen(!open)
  }
  const bodyId = `${control.id}-body`
  const caption = form.labelOf(control.shown.value)
  const exchanges = leaves(node).flatMap(name => {
    const files = form.controls.get(name)
    const declared = files?.shown.value.exchange
    return files && declared ? [<Exchange key={name} control={files} declared={declared} />] : []
  })
  return (
    <>
      {exchanges}
      <div class="frame fold" role="group" aria-labelledby={`${control.id}-title`} data-control={control.id} data-open={open ? '' : undefined}>
        <div class="fold-head">
          <h2>
            <button type="button" id={`${control.id}-title`} aria-expanded={open} aria-controls={open ? bodyId : undefined} onClick={fold}>
              <Icon name="chevron" />
              {caption}
            </button>
          </h2>
          {open && <GroupTip controls={insideOf(control)} caption={caption} />}
        </div>
        {open && (
          <div id={bodyId} class="fold-body">
            <Node form={form} node={node.content} depth={depth + 1} />
          </div>
        )}
      </div>
    </>
  )
}

function Frame({ form, node, depth }: NodeProps & { node: FrameNode }) {
  const control = form.controls.get(node.frame)
  const shown = control?.shown.value
  if (!control || !shown) return <Node form={form} node={node.content} depth={depth} />
  if (node.fold) return <FoldedFrame form={form} node={node} depth={depth} control={control} />
  const titleId = `${control.id}-title`
  const inside = insideOf(control)
  const caption = form.labelOf(shown)
  const facts = factsOf(form)
  const radio = isRadioGroup(node.content, facts)
  return (
    <div
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
        <div class="frame-head" data-tip={shown.toolTip}>
          <h2 id={titleId}>{caption}</h2>
          <GroupTip controls={inside} caption={caption} />
        </div>
      )}
      <Node form={form} node={node.content} depth={depth + 1} />
    </div>
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
  // Those in a frame are explained at its title.
  const acts = line && depth === 0 ? children.flatMap(child => ('control' in child ? form.controls.get(child.control) ?? [] : [])) : []
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
      {acts.length > 1 && <GroupTip controls={acts} />}
    </div>
  )
}

export function FormView({ form }: { form: FormModel }) {
  const layout = form.layout.value
  if (!present(layout, factsOf(form))) return <p class="page-empty">{messages.value.emptyPage}</p>
  return <Node form={form} node={layout} depth={0} />
}
