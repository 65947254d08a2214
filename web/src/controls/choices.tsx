import type { ControlModel } from '../model/form'
import { nameOf, Tip, tipId } from './field'

function Choice({ control, type }: { control: ControlModel; type: 'checkbox' | 'radio' }) {
  const shown = control.shown.value
  const on = shown.value === 1
  const caption = control.form.labelOf(shown)
  const explained = control.form.explains(control) && caption !== '' && Boolean(shown.toolTip)
  return (
    <div
      class={`choice ${type}`}
      data-control={control.id}
      data-tip={explained ? undefined : shown.toolTip}
      data-disabled={shown.enabled ? undefined : ''}
    >
      <label class="choice-label">
        <input
          id={control.id}
          type={type}
          name={type === 'radio' ? `${control.form.name}/${shown.group ?? ''}` : undefined}
          checked={on}
          disabled={!shown.enabled}
          aria-label={caption === '' ? nameOf(control, shown) : undefined}
          aria-labelledby={explained ? `${control.id}-label` : undefined}
          aria-describedby={shown.toolTip ? tipId(control) : undefined}
          onClick={event => {
            if (!control.click()) event.currentTarget.checked = on
          }}
        />
        <span class="choice-text">
          <span id={`${control.id}-label`}>{caption}</span>
          {explained && (
            <span id={tipId(control)} class="choice-note">
              {shown.toolTip}
            </span>
          )}
        </span>
      </label>
      {!explained && <Tip control={control} shown={shown} />}
    </div>
  )
}

export const CheckBox = ({ control }: { control: ControlModel }) => <Choice control={control} type="checkbox" />

/** The browser moves between the radio buttons of one name with the arrow keys, each move being a click. */
export const OptionButton = ({ control }: { control: ControlModel }) => <Choice control={control} type="radio" />
