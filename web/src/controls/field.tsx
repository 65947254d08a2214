import type { ComponentChildren } from 'preact'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { Icon } from '../parts/icon'
import type { Control } from '../wire/protocol'

export const tipId = (control: ControlModel): string => `${control.id}-tip`
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
    'aria-describedby': shown.toolTip ? tipId(control) : undefined,
  }
}

/** The text that describes a control: read aloud with it, shown by hover and focus, and by a button where only a finger points. */
export function Tip({ control, shown }: { control: ControlModel; shown: Control }) {
  if (!shown.toolTip) return null
  return (
    <>
      <button type="button" class="tip-button" data-tip-button="" aria-label={messages.value.help(nameOf(control, shown))}>
        <Icon name="info" />
      </button>
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
  children: ComponentChildren
}

/** A control with its label above it. */
export function Field({ control, shown, class: kind, labelFor, aside, children }: FieldProps) {
  const label = control.form.labelOf(shown)
  const head = label !== '' || aside !== undefined
  return (
    <div class={`field ${kind}`} data-control={control.id} data-tip={shown.toolTip} data-disabled={shown.enabled ? undefined : ''}>
      {head && (
        <div class="field-head">
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
      {!head && <Tip control={control} shown={shown} />}
    </div>
  )
}
