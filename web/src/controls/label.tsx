import type { ControlModel } from '../model/form'

export function Label({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  return (
    <p class="text-label" id={control.id} data-control={control.id} data-tip={shown.toolTip} dir="auto">
      {shown.caption ?? shown.text ?? ''}
    </p>
  )
}
