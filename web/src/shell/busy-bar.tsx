import { messages } from '../i18n'
import { session } from '../state/app-state'

/** A thin bar that never moves what is below it. */
export function BusyBar() {
  const busy = session.busy.value
  const m = messages.value
  const known = busy !== null && busy.total > 0
  const part = known ? Math.min(100, (busy.done / busy.total) * 100) : undefined
  return (
    <div class="busy" data-on={busy ? '' : undefined}>
      {busy && (
        <>
          <div
            class={`busy-bar${known ? '' : ' unknown'}`}
            role="progressbar"
            aria-label={busy.text || m.busy}
            aria-valuemin={0}
            aria-valuemax={known ? busy.total : undefined}
            aria-valuenow={known ? busy.done : undefined}
          >
            <span style={{ width: known ? `${part}%` : '' }} />
          </div>
          <p class="busy-text">
            <span>{busy.text || m.busy}</span>
            {known && <span class="busy-count">{m.busyProgress(busy.done, busy.total)}</span>}
          </p>
        </>
      )}
    </div>
  )
}
