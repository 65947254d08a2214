// The way of an administrator from the first start to a setting that is stored.
import assert from 'node:assert/strict'
import { test } from 'node:test'
import { openPage, password, picture, setUp, signIn, withConsole } from './console.mjs'

let console
let page

withConsole({ sample: true, expected: ['status of 401', 'status of 400'], signedIn: false }, started => ({ console, page } = started))

test('the first start asks for the secret and a good password', async () => {
  await page.getByLabel('Set-up secret').fill('wrong')
  await page.getByLabel('New password', { exact: true }).fill('correct horse battery')
  await page.getByLabel('Repeat the new password').fill('correct horse battery')
  await page.getByRole('button', { name: 'Set up and sign in' }).click()
  await page.getByText('This is not the set-up secret').waitFor()
  await picture(page, 'set-up')
  await setUp(page, console)
  await page.getByRole('heading', { name: 'Overview' }).waitFor()
})

test('signing out and in again, with the wrong password first', async () => {
  await page.getByRole('button', { name: 'Sign out' }).click()
  await page.getByLabel('Account').fill('admin')
  await page.getByLabel('Password', { exact: true }).fill('wrong password')
  await page.getByRole('button', { name: 'Sign in' }).click()
  await page.getByText('The account or the password is wrong.').waitFor()
  await picture(page, 'sign-in')
  await signIn(page)
  await page.getByRole('heading', { name: 'Overview' }).waitFor()
})

test('another password is chosen', async () => {
  const dialog = page.getByRole('dialog', { name: 'Change password' })
  const fill = async (old, chosen) => {
    await page.getByRole('navigation').getByRole('button', { name: 'Change password' }).click()
    await dialog.getByLabel('Current password').fill(old)
    await dialog.getByLabel('New password', { exact: true }).fill(chosen)
    await dialog.getByLabel('Repeat the new password').fill(chosen)
    await dialog.getByRole('button', { name: 'Change password' }).click()
  }
  await fill('a wrong guess', 'staple battery')
  await dialog.getByText('The current password is wrong.').waitFor()
  await picture(page, 'password')
  await dialog.getByRole('button', { name: 'Close' }).click()
  await fill(password, 'staple battery')
  await page.getByRole('region', { name: 'Notices' }).getByText('The password has been changed').waitFor()
  await page.getByRole('button', { name: 'Sign out' }).click()
  await signIn(page, 'staple battery')
  await page.getByRole('heading', { name: 'Overview' }).waitFor()
})

test('a switch is stored at once, and is there after a reload', async () => {
  await openPage(page, 'General', 'general')
  const box = page.getByRole('checkbox', { name: 'Require a message identifier' })
  const wasOn = await box.isChecked()
  await page.getByText('Require a message identifier').click()
  await console.becomes("select value from konf where ID='checkmid'", wasOn ? '0' : '1')
  await page.getByRole('region', { name: 'Notices' }).getByText(`"Require a message identifier" switched ${wasOn ? 'off' : 'on'}`).waitFor()
  await page.reload()
  await page.getByText('Welcome to Mirvan').waitFor()
  assert.equal(await box.isChecked(), !wasOn)
})

test('what another console wrote is there on the next showing', async () => {
  const before = await page.getByRole('checkbox', { name: 'Greylisting' }).isChecked()
  console.run('do', 'general', `greylisting=${before ? 0 : 1}`)
  await openPage(page, 'All controls', 'allcontrols')
  await openPage(page, 'General', 'general')
  const box = page.getByRole('checkbox', { name: 'Greylisting' })
  await box.waitFor()
  assert.equal(await box.isChecked(), !before)
})

test('the activity drawer tells what was written and what failed', async () => {
  await page.getByRole('button', { name: 'Update all lists' }).click()
  await page.getByText('The lists could not be fetched from the server').first().waitFor()
  await page.getByRole('button', { name: 'Activity' }).click()
  const record = page.getByRole('listbox', { name: 'Activity' })
  await record.getByText('delete entry blackmail').waitFor()
  await picture(page, 'activity')
  await page.keyboard.press('Escape')
  await page.getByRole('button', { name: 'Update all lists' }).waitFor()
})

test('the search leads to a setting by the keyboard alone', async () => {
  await openPage(page, 'All controls', 'allcontrols')
  await page.keyboard.press('Control+k')
  await page.keyboard.type('greylist')
  await page.getByRole('option', { name: /Greylisting/ }).first().waitFor()
  await picture(page, 'search')
  await page.keyboard.press('Enter')
  const box = page.getByRole('checkbox', { name: 'Greylisting' })
  await box.waitFor()
  await page.waitForFunction(() => document.activeElement?.closest('[data-control$="greylisting"]') !== null)
  const before = await box.isChecked()
  await page.keyboard.press('Space')
  await console.becomes("select value from konf where ID='greylist'", before ? '0' : '1')
})

test('the page looks right in every shape, and in German', async () => {
  await picture(page, 'general')
  const language = page.getByRole('combobox', { name: 'Language' })
  await language.focus()
  await page.keyboard.press('ArrowDown')
  await page.getByRole('option', { name: 'german' }).click()
  // At once, without a change of page.
  await page.getByRole('button', { name: 'Alle Listen aktualisieren' }).waitFor()
  await page.getByText('Willkommen bei Mirvan').waitFor()
  await picture(page, 'general-german')
})
