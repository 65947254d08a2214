import { useEffect, useRef, useState } from 'preact/hooks'
import { keyTarget } from '../controls/list-row'
import { VirtualList, type VirtualListHandle } from '../controls/virtual-list'
import { messages } from '../i18n'
import { coarse } from '../model/preferences'
import { visibleText } from '../model/visible-text'
import { Icon } from '../parts/icon'
import { CopyButton } from '../parts/text-viewer'
import { activity } from '../state/app-state'
import type { ActivityEntry } from '../wire/protocol'
import { OfferedFiles } from './offered-files'

const entryHeight = (): number => (coarse.value ? 72 : 60)

function Entry({ id, entry, selected, onChoose }: { id: string; entry: ActivityEntry | undefined; selected: boolean; onChoose: () => void }) {
  const m = messages.value
  return (
    <div id={id} role="option" aria-selected={selected} class={`entry${entry && !entry.ok ? ' failed' : ''}`} onClick={onChoose}>
      {entry ? (
        <>
          <p class="entry-head">
            <time>{entry.time}</time>
            <span class="entry-kind">{entry.kind}</span>
            <span class={`outcome${entry.ok ? '' : ' failed'}`}>
              <Icon name={entry.ok ? 'check' : 'warning'} />
              {entry.ok ? m.outcome.ok : m.outcome.failed}
            </span>
            {!entry.ok && (
              <bdi class="entry-error" dir="auto">
                {visibleText(entry.error, 300)}
              </bdi>
            )}
          </p>
          <bdi class="entry-text" dir="auto">
            {visibleText(entry.text, 500)}
          </bdi>
        </>
      ) : (
        <span class="row-waiting" />
      )}
    </div>
  )
}

function Detail({ entry }: { entry: ActivityEntry }) {
  const m = messages.value
  return (
    <section class="entry-detail" aria-label={m.activityDetail}>
      <div class="entry-detail-head">
        <span>
          {entry.time} · {entry.kind} · {entry.ok ? m.outcome.ok : m.outcome.failed}
        </span>
        <CopyButton text={entry.ok ? entry.text : `${entry.text}\n${entry.error}`} small />
      </div>
      <pre tabIndex={0} dir="auto">
        {visibleText(entry.text, 20_000)}
        {!entry.ok && <strong>{`\n${visibleText(entry.error, 2000)}`}</strong>}
      </pre>
    </section>
  )
}

export function ActivityDrawer() {
  return activity.open.value ? <OpenDrawer /> : null
}

function OpenDrawer() {
  void activity.version.value
  const m = messages.value
  const handle = useRef<VirtualListHandle>(null)
  const panel = useRef<HTMLElement>(null)
  // The record grows at its end, which is shown first: the chosen entry is remembered by its place in the record.
  const [chosen, setChosen] = useState(-1)
  const only = activity.failuresOnly.value
  const failures = activity.failures.value
  const total = activity.total.value
  const count = only ? failures.length : total - activity.oldest.value
  const placeOf = (row: number): number => (only ? (failures[row]?.position ?? -1) : total - 1 - row)
  const entryAt = (row: number): ActivityEntry | undefined => (only ? failures[row] : activity.entry(placeOf(row)))
  const rowOf = (place: number): number =>
    only ? failures.findIndex(failure => failure.position === place) : total - 1 - place
  const row = chosen < 0 ? -1 : rowOf(chosen)
  const entry = row < 0 ? undefined : entryAt(row)

  useEffect(() => {
    const before = document.activeElement
    panel.current?.querySelector<HTMLElement>('button')?.focus()
    return () => {
      if (before instanceof HTMLElement && before.isConnected) before.focus({ preventScroll: true })
    }
  }, [])
  useEffect(() => {
    handle.current?.toTop()
  }, [only])

  return (
    <aside
      ref={panel}
      class="drawer"
      aria-label={m.activity}
      onKeyDown={event => {
        if (event.key === 'Escape' && !event.defaultPrevented) activity.toggle(false)
      }}
    >
      <header class="drawer-head">
        <div>
          <h2>{m.activity}</h2>
          <p>{m.activityLead}</p>
        </div>
        <button type="button" class="icon-button" aria-label={m.close} onClick={() => activity.toggle(false)}>
          <Icon name="close" />
        </button>
      </header>
      <OfferedFiles />
      <div class="drawer-tools">
        <label class="choice-label">
          <input
            type="checkbox"
            checked={only}
            onChange={event => {
              setChosen(-1)
              activity.showFailures(event.currentTarget.checked)
            }}
          />
          <span class="choice-text">{m.failuresOnly}</span>
        </label>
        <span class="count" aria-live="polite">
          {only && activity.scanning.value ? m.searchingFailures : m.entries(count)}
        </span>
      </div>
      <div class="list-view">
        <VirtualList
          handle={handle}
          count={count}
          rowHeight={entryHeight()}
          onRange={(first, last) => {
            if (!only && last >= first) activity.show(placeOf(last), placeOf(first))
          }}
          class="list-rows"
          role="listbox"
          tabIndex={0}
          aria-label={m.activity}
          aria-activedescendant={row >= 0 ? `entry-${chosen}` : undefined}
          onKeyDown={(event: KeyboardEvent) => {
            const target = keyTarget(event.key, row, count, handle.current?.pageSize() ?? 1)
            if (target === undefined || count === 0) return
            event.preventDefault()
            setChosen(placeOf(target))
            handle.current?.reveal(target)
          }}
          row={(position: number) => {
            const place = placeOf(position)
            return (
              <Entry
                key={place}
                id={`entry-${place}`}
                entry={entryAt(position)}
                selected={place === chosen}
                onChoose={() => setChosen(place === chosen ? -1 : place)}
              />
            )
          }}
        />
        {count === 0 && !activity.scanning.value && <p class="list-empty">{only ? m.noFailures : m.noActivity}</p>}
      </div>
      {entry && <Detail entry={entry} />}
    </aside>
  )
}
