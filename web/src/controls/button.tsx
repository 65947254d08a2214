import type { ControlModel } from '../model/form'
import { Spinner } from '../parts/icon'
import { session } from '../state/app-state'
import { nameOf, Tip, tipId } from './field'

export function Button({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const waits = control.waiting.value > 0 && session.busy.value !== null
  const caption = control.form.labelOf(shown)
  const context = control.form.contextOf(control)
  const name = caption === '' ? nameOf(control, shown) : context === '' ? undefined : `${caption} (${context})`
  const look = shown.primary ? ' primary' : control.form.lookOf(control)
  const press = (): void => {
    // The action of the first click is still running; a second one would only queue it again.
    if (waits) return
    const missing = control.form.missingFor(control)
    control.form.missing.value = missing ?? null
    if (missing) document.getElementById(missing.id)?.focus()
    else control.click()
  }
  return (
    <span class="button-control" data-control={control.id} data-tip={shown.toolTip} data-disabled={shown.enabled ? undefined : ''}>
      <button
        type="button"
        id={control.id}
        class={`button${look}`}
        disabled={!shown.enabled}
        aria-label={name}
        aria-describedby={shown.toolTip ? tipId(control) : undefined}
        aria-busy={waits}
        onClick={press}
      >
        {waits && <Spinner />}
        <span class="button-text">{caption || nameOf(control, shown)}</span>
      </button>
      <Tip control={control} shown={shown} />
    </span>
  )
}
