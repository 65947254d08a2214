import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { Icon } from '../parts/icon'

/** Others have changed what the list shows: it is read again when somebody asks, so that no row moves under the pointer. */
export function StaleNote({ control }: { control: ControlModel }) {
  const m = messages.value
  return (
    <div class="stale-note" role="status">
      {control.shown.value.stale && (
        <p>
          <Icon name="info" />
          <span>{m.listChanged}</span>
          <button type="button" class="button quiet small" onClick={() => control.reload()}>
            {m.reloadList}
          </button>
        </p>
      )}
    </div>
  )
}
