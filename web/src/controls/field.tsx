import type { ComponentChildren } from 'preact'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { Icon } from '../parts/icon'
import type { Control } from '../wire/protocol'
import { DraftOffer } from './draft-offer'

const fewestRows = 3
const shortRows = 10
const mostRows = 1000

export const tipId = (control: ControlModel): string => `${control.id}-tip`
const hintId = (control: ControlModel): string => `${control.id}-hint`
const labelId = (control: ControlModel): string => `${control.id}-label`

/** What a control is called when nothing on the form names it. */
export function nameOf(control: ControlModel, shown: Control): string {
  return control.form.labelOf(shown) || shown.placeholder || shown.toolTip || control.name
}

/** The names and descriptions that assistive technology reads for a control. */
export function naming(control: ControlModel, shown: Control): Record<string, string | undefined> {
  const labelled = control.form.labelOf(shown) !== ''
  return {
    'aria-labelledby': labelled ? labelId(control) : undefined,
    'aria-label': labelled ? undefined : nameOf(control, shown),
    'aria-describedby': describing(control, shown),
  }
}

/** What a field expects comes first: it is about what somebody does now. */
function describing(control: ControlModel, shown: Control): string | undefined {
  const ids = [shown.hint === undefined ? '' : hintId(control), shown.toolTip ? tipId(control) : '']
  return ids.filter(Boolean).join(' ') || undefined
}

/** Why the text does not fit, below the field, in the space between it and what follows: nothing moves when it comes. A button that
 *  would refuse the text has it said aloud. */
function Hint({ control, shown }: { control: ControlModel; shown: Control }) {
  const unfit = control.form.unfit.value
  const told = unfit?.control === control && unfit.text === control.text.value ? unfit.hint : ''
  const hint = told || (shown.hint && !(shown.hint.unfinished && control.typing.value) ? shown.hint.text : '')
  return (
    <p class="field-hint" id={hintId(control)} role={told ? 'alert' : undefined} data-on={hint === '' ? undefined : ''} dir="auto" title={hint || undefined}>
      {hint !== '' && <Icon name="warning" />}
      <span>{hint}</span>
    </p>
  )
}

/** The text that describes a control: read aloud with it, and shown by hover and focus. Where only a finger points, a button shows it, or
 *  that of the frame around it, so that there is one button for a group. */
export function Tip({ control, shown }: { control: ControlModel; shown: Control }) {
  if (!shown.toolTip) return null
  return (
    <>
      {!control.form.frameAround(control.name) && (
        <button type="button" class="tip-button" data-tip-button="" aria-label={messages.value.help(nameOf(control, shown))}>
          <Icon name="info" />
        </button>
      )}
      <span id={tipId(control)} hidden>
        {shown.toolTip}
      </span>
    </>
  )
}

interface FieldProps {
  control: ControlModel
  shown: Control
  class: string
  /** The element that the label belongs to; lists have none. */
  labelFor?: string
  aside?: ComponentChildren
  /** How many rows a list has; one with few is no higher than they are. */
  rows?: number
  children: ComponentChildren
}

/** A control with its label above it. */
export function Field({ control, shown, class: kind, labelFor, aside, rows, children }: FieldProps) {
  const label = control.form.labelOf(shown)
  const lines = rows === undefined ? undefined : Math.max(fewestRows, Math.min(rows, mostRows))
  const tall = rows !== undefined || shown.multiLine === true
  const head = label !== '' || aside !== undefined
  return (
    <div
      class={`field ${kind}`}
      data-control={control.id}
      // Over rows and over a text that is being written it would be in the way.
      data-tip={tall ? undefined : shown.toolTip}
      data-disabled={shown.enabled ? undefined : ''}
      data-short={rows !== undefined && rows <= shortRows ? '' : undefined}
      style={lines === undefined ? undefined : { '--rows': String(lines) }}
    >
      {head && (
        <div class="field-head" data-tip={tall ? shown.toolTip : undefined}>
          {label !== '' &&
            (labelFor ? (
              <label class="field-label" id={labelId(control)} for={labelFor}>
                {label}
              </label>
            ) : (
              <span class="field-label" id={labelId(control)}>
                {label}
              </span>
            ))}
          <Tip control={control} shown={shown} />
          {aside !== undefined && <span class="field-aside">{aside}</span>}
        </div>
      )}
      {children}
      <DraftOffer control={control} />
      {control.form.missing.value === control && !control.holdsSomething && (
        <p class="field-missing" role="alert">
          <Icon name="info" />
          {messages.value.missing(nameOf(control, shown), control.list !== null || control.table !== null, control.form.feedsFrom(control))}
        </p>
      )}
      {shown.hint !== undefined && <Hint control={control} shown={shown} />}
      {!head && <Tip control={control} shown={shown} />}
    </div>
  )
}
