// Several tabs and people at the same time, lost lines, and what was typed and not saved.
import assert from 'node:assert/strict'
import { test } from 'node:test'
import { openNamed, picture, signIn, withConsole } from './console.mjs'

let console
let browser
let page
withConsole({}, given => {
  ;({ console, browser, page } = given)
})

const field = (tab, form, name) => tab.locator(`#c-${form}-${name}`)
const press = (tab, form, name) => field(tab, form, name).click()
const box = tab => tab.getByRole('alertdialog')
const answer = (tab, name) => box(tab).getByRole('button', { name, exact: true }).click()

/** Another tab of the same browser. */
async function anotherTab(name) {
  const tab = await page.context().newPage()
  await tab.goto(`${console.address}#/${name}`)
  await tab.locator(`main [data-control^="c-${name}-"]`).first().waitFor()
  return tab
}

/** Until nothing of the page of the texts is kept as unsaved. */
const nothingKept = tab =>
  tab.waitForFunction(() => !Object.keys(localStorage).some(key => key.startsWith('draft ') && key.includes(' strings ')))

async function settled(tab) {
  await tab.waitForFunction(() => document.querySelectorAll('[aria-busy="true"], .is-busy').length === 0)
}

test('every tab has a console of its own, also one that was duplicated', async () => {
  await openNamed(page, 'strings')
  const second = await anotherTab('domainbw')
  await field(page, 'strings', 'hello').fill('250 first tab')
  await field(second, 'domainbw', 'Text1').fill('second.example')
  const [copy] = await Promise.all([page.waitForEvent('popup'), page.evaluate(() => void window.open(location.href))])
  await field(copy, 'strings', 'hello').waitFor()
  assert.notEqual(await field(copy, 'strings', 'hello').inputValue(), '250 first tab')
  assert.equal(await field(page, 'strings', 'hello').inputValue(), '250 first tab')
  await copy.close()

  // A reload comes back to what was typed; the browser asks before it, which the tests accept.
  for (const [tab, form, name, text] of [
    [page, 'strings', 'hello', '250 first tab'],
    [second, 'domainbw', 'Text1', 'second.example'],
  ]) {
    await tab.waitForTimeout(400)
    await tab.reload()
    await field(tab, form, name).waitFor()
    assert.equal(await field(tab, form, name).inputValue(), text)
  }
  await second.close()
  await press(page, 'strings', 'updatedb')
  await console.becomes("SELECT value FROM konf WHERE ID='hello'", '250 first tab')
})

test('a lost line loses nothing that was typed, before it or meanwhile', async () => {
  const tab = await page.context().newPage()
  let cut = false
  const lines = []
  await tab.routeWebSocket(/\/ws/, line => {
    if (cut) return void line.close({ code: 1011 })
    lines.push(line, line.connectToServer())
  })
  browser.expected.push('WebSocket')
  await tab.goto(`${console.address}#/strings`)
  await field(tab, 'strings', 'bye').fill('221 before')
  await tab.waitForTimeout(400)
  cut = true
  for (const line of lines) await line.close({ code: 1011 })
  await tab.getByText('Connection lost').waitFor()
  await field(tab, 'strings', 'queue').fill('250 meanwhile')
  await tab.waitForTimeout(1000)
  cut = false
  await tab.getByRole('button', { name: 'Try now' }).click()
  await tab.getByText('Connection lost').waitFor({ state: 'detached' })
  assert.equal(await field(tab, 'strings', 'bye').inputValue(), '221 before')
  assert.equal(await field(tab, 'strings', 'queue').inputValue(), '250 meanwhile')
  await press(tab, 'strings', 'updatedb')
  await console.becomes("SELECT value FROM konf WHERE ID='bye'", '221 before')
  await console.becomes("SELECT value FROM konf WHERE ID='queue'", '250 meanwhile')
  await nothingKept(tab)
  await tab.close()
  browser.expected.pop()
})

test('an address that is entered while a page arrives is followed', async () => {
  const tab = await page.context().newPage()
  await tab.addInitScript(() => {
    const { set } = Object.getOwnPropertyDescriptor(WebSocket.prototype, 'onmessage')
    let entered = false
    const before = deliver => event => {
      if (!entered && event.data.includes('"type":"form"')) {
        entered = true
        location.hash = '#/strings'
      }
      deliver(event)
    }
    Object.defineProperty(WebSocket.prototype, 'onmessage', { set(deliver) { set.call(this, before(deliver)) } })
  })
  await tab.goto(`${console.address}#/domainbw`)
  await field(tab, 'strings', 'bye').waitFor()
  assert.equal(new URL(tab.url()).hash, '#/strings')
  await tab.close()
})

test('two people in five tabs lose nothing of each other', async () => {
  const theirs = await browser.open(console)
  await signIn(theirs)
  const fifth = await theirs.context().newPage()
  await fifth.goto(console.address)
  const tabs = [page, await anotherTab('domainbw'), await anotherTab('domainbw'), theirs, fifth]
  await Promise.all(tabs.map(tab => openNamed(tab, 'domainbw')))
  // The same list, at once.
  await Promise.all(
    tabs.map(async (tab, number) => {
      for (let i = 0; i < 4; ++i) {
        await field(tab, 'domainbw', 'Text1').fill(`tab${number}-${i}.example`)
        await press(tab, 'domainbw', 'Command3')
        await tab.waitForFunction(
          ([id, entry]) => document.querySelector(id)?.textContent.includes(entry),
          ['[data-control="c-domainbw-List2"]', `tab${number}-${i}.example`],
        )
      }
    }),
  )
  assert.equal(console.sql("SELECT count(*) FROM blacklist WHERE entry LIKE 'tab%'"), '20')
  // A tab that is looked at says that the list has changed, and keeps it until it is asked.
  const stale = page.locator('[data-control="c-domainbw-List2"]').getByText('This list has been changed elsewhere.')
  await press(fifth, 'domainbw', 'refrall')
  await field(fifth, 'domainbw', 'Text1').fill('latest.example')
  await press(fifth, 'domainbw', 'Command3')
  await console.becomes("SELECT count(*) FROM blacklist WHERE entry='latest.example'", '1')
  await page.bringToFront()
  await page.evaluate(() => document.dispatchEvent(new Event('visibilitychange')))
  await stale.waitFor()
  await picture(page, 'stale-list')
  await page.locator('[data-control="c-domainbw-List2"]').getByRole('button', { name: 'Reload' }).click()
  await stale.waitFor({ state: 'detached' })
  await page.locator('[data-control="c-domainbw-List2"]').getByText('latest.example').first().waitFor()

  // Different texts of one page: the unchanged ones are not written back.
  await openNamed(page, 'strings')
  await openNamed(theirs, 'strings')
  await field(page, 'strings', 'hello').fill('250 mine')
  await press(page, 'strings', 'updatedb')
  await console.becomes("SELECT value FROM konf WHERE ID='hello'", '250 mine')
  await field(theirs, 'strings', 'bye').fill('221 theirs')
  await press(theirs, 'strings', 'updatedb')
  await console.becomes("SELECT value FROM konf WHERE ID='bye'", '221 theirs')
  assert.equal(console.sql("SELECT value FROM konf WHERE ID='hello'"), '250 mine')
  // The same text.
  await field(page, 'strings', 'bye').fill('221 mine')
  await press(page, 'strings', 'updatedb')
  await box(page).getByText('221 theirs').waitFor()
  await picture(page, 'newer-text')
  await answer(page, 'Keep the other')
  await box(page).waitFor({ state: 'detached' })
  assert.equal(await field(page, 'strings', 'bye').inputValue(), '221 theirs')

  // The same script.
  for (const tab of [page, theirs]) await openNamed(tab, 'ScriptEngine')
  await field(page, 'ScriptEngine', 'scriptnamen').fill('check')
  await press(page, 'ScriptEngine', 'insertnew')
  await console.becomes("SELECT count(*) FROM scriptengine WHERE scriptname='check'", '1')
  await openNamed(theirs, 'strings')
  await openNamed(theirs, 'ScriptEngine')
  await field(theirs, 'ScriptEngine', 'allscripts').check()
  await field(theirs, 'ScriptEngine', 'scriptnamen').press('ArrowDown')
  await theirs.getByRole('option', { name: 'check', exact: true }).click()
  const source = tab => tab.getByRole('textbox', { name: 'Source text' })
  const write = async (tab, text) => {
    await source(tab).click()
    await tab.keyboard.press('Control+a')
    await tab.keyboard.insertText(text)
  }
  await source(theirs).getByText('Function check').waitFor()
  await write(theirs, "' theirs")
  await press(theirs, 'ScriptEngine', 'savechunk')
  await console.becomes("SELECT length(scriptcontent) < 40 FROM scriptengine WHERE scriptname='check'", '1')
  await write(page, "' mine, which is longer than what the other one has stored")
  await press(page, 'ScriptEngine', 'savechunk')
  await box(page).getByText("' theirs").waitFor()
  await answer(page, 'Overwrite')
  await console.becomes("SELECT length(scriptcontent) > 60 FROM scriptengine WHERE scriptname='check'", '1')
  // Signing out ends all tabs of the one, and none of the other.
  await theirs.getByRole('button', { name: /^Sign out/ }).click()
  await theirs.getByLabel('Account').waitFor()
  await fifth.getByText('Your session has ended').waitFor()
  await settled(page)
  await openNamed(page, 'domainbw')
  for (const tab of tabs.slice(1)) await tab.close()
})

test('what was typed is not left without a question, and is offered again', async () => {
  await openNamed(page, 'strings')
  await field(page, 'strings', 'hello').fill('250 unsaved')
  await page.waitForTimeout(400)
  const link = page.getByRole('navigation').locator('a[href$="/spf"]')
  await link.click()
  await box(page).getByText('Reply to HELO and EHLO').waitFor()
  await answer(page, 'Cancel')
  await page.waitForFunction(() => location.hash === '#/strings')
  assert.equal(await field(page, 'strings', 'hello').inputValue(), '250 unsaved')
  const signOut = page.getByRole('button', { name: /^Sign out/ })
  await signOut.click()
  await box(page).getByText('Reply to HELO and EHLO').waitFor()
  await answer(page, 'Cancel')
  await settled(page)
  assert.equal(await field(page, 'strings', 'hello').inputValue(), '250 unsaved')
  await link.click()
  await answer(page, 'Leave')
  await page.locator('main [data-control^="c-spf-"]').first().waitFor()

  // On this device, for this account, whatever becomes of the session.
  await signOut.click()
  await signIn(page)
  await openNamed(page, 'strings')
  const offer = page.locator('.draft-offer')
  await offer.getByText(/You have unsaved text of \d\d:\d\d:.*250 unsaved/s).waitFor()
  await picture(page, 'draft')
  await offer.getByRole('button', { name: 'Restore' }).click()
  assert.equal(await field(page, 'strings', 'hello').inputValue(), '250 unsaved')
  await offer.waitFor({ state: 'detached' })
  await press(page, 'strings', 'updatedb')
  await console.becomes("SELECT value FROM konf WHERE ID='hello'", '250 unsaved')
  await nothingKept(page)

  // Closing the tab: the browser asks.
  await field(page, 'strings', 'hello').fill('250 once more')
  await page.waitForTimeout(400)
  const asked = page.waitForEvent('dialog')
  await page.reload()
  assert.equal((await asked).type(), 'beforeunload')
  await field(page, 'strings', 'hello').waitFor()
  // It is taken off the device at a click.
  await page.getByRole('button', { name: /^Forget \d+ unsaved text/ }).click()
  assert.equal(await page.evaluate(() => Object.keys(localStorage).filter(key => key.startsWith('draft ')).length), 0)
  await press(page, 'strings', 'updatedb')
  await console.becomes("SELECT value FROM konf WHERE ID='hello'", '250 once more')

  // Signing out within the same moment.
  await field(page, 'strings', 'hello').fill('250 at the last moment')
  await signOut.click()
  await answer(page, 'Leave')
  await signIn(page)
  await openNamed(page, 'strings')
  await offer.getByText('250 at the last moment').waitFor()
})
