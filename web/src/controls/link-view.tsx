import { addressOf } from '../model/address'
import type { ControlModel } from '../model/form'
import { nameOf, Tip, tipId } from './field'

/** A real link, so that it can be opened in another tab. */
export function LinkView({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const caption = control.form.labelOf(shown) || nameOf(control, shown)
  const usable = shown.enabled && Boolean(shown.page)
  return (
    <span class="link-control" data-control={control.id} data-tip={shown.toolTip} data-disabled={usable ? undefined : ''}>
      <a
        id={control.id}
        class="link"
        href={usable ? addressOf(shown.page ?? '', shown.query) : undefined}
        role="link"
        aria-disabled={usable ? undefined : true}
        aria-describedby={shown.toolTip ? tipId(control) : undefined}
        dir="auto"
      >
        {caption}
      </a>
      <Tip control={control} shown={shown} />
    </span>
  )
}
